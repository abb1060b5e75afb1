// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// sweep_growth SWEEPS PROCESSES: runs SWEEPS sweeps; between two sweeps PROCESSES processes start and exit.
// Prints by how many KB the anonymous memory of this program has grown since the first tenth of the sweeps.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "sampling/memory_sampler.hpp"
#include "support/idle_processes.hpp"

namespace {

/// Anonymous memory of this program, KB.
long anonymousKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word != "RssAnon:") continue;
    long kilobytes = 0;
    status >> kilobytes;
    return kilobytes;
  }
  return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) return 2;
  const int sweeps = std::atoi(arguments[1]);
  const std::size_t processes = std::strtoul(arguments[2], nullptr, 10);
  tarn::MemorySampler sampler(tarn::makeLinuxSamplerPort(tarn::LinuxRoots{}));
  long initialKilobytes = 0;
  for (int sweep = 0; sweep < sweeps; ++sweep) {
    const tarn::IdleProcesses shortLived(processes);
    sampler.sample();
    if (sweep == sweeps / 10) initialKilobytes = anonymousKilobytes();
  }
  std::printf("%ld\n", anonymousKilobytes() - initialKilobytes);
  return 0;
}
