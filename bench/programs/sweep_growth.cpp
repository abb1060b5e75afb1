// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// sweep_growth SWEEPS PROCESSES: sweeps so often, and between two sweeps starts and ends so many processes.
// Prints by how many KB the footprint has grown since the first tenth.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "sampling/memory_sampler.hpp"
#include "support/idle_processes.hpp"

namespace {

long ownFootprint() {
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
  const std::size_t churn = std::strtoul(arguments[2], nullptr, 10);
  tarn::MemorySampler sampler(tarn::makeLinuxSamplerPort(tarn::LinuxRoots{}));
  long early = 0;
  for (int sweep = 0; sweep < sweeps; ++sweep) {
    const tarn::IdleProcesses shortLived(churn);
    sampler.sample();
    if (sweep == sweeps / 10) early = ownFootprint();
  }
  std::printf("%ld\n", ownFootprint() - early);
  return 0;
}
