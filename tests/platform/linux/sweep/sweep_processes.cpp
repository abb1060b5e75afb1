// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// sweep_processes COUNT: samples this machine COUNT times. Tests run it under strace. It marks the start of
// each sweep, and the end of the last one, by a call of access("/begin-sweep"), a file that does not exist.

#include <unistd.h>

#include <cstdlib>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "sampling/memory_sampler.hpp"

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) return 2;
  tarn::MemorySampler sampler(tarn::makeLinuxSamplerPort(tarn::LinuxRoots{}));
  std::size_t groups = 0;
  for (int left = std::atoi(arguments[1]); left > 0; --left) {
    static_cast<void>(access("/begin-sweep", F_OK));
    groups = sampler.sample().groups.size();
  }
  static_cast<void>(access("/begin-sweep", F_OK));
  return groups > 0 ? 0 : 1;
}
