// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// list_groups: one sweep of this machine. A line for each process: its pid, a tab, its group's id, a tab, the
// group's name.

#include <cstdio>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "sampling/memory_sampler.hpp"

int main() {
  tarn::MemorySampler sampler(tarn::makeLinuxSamplerPort(tarn::LinuxRoots{}));
  const tarn::MemorySnapshot snapshot = sampler.sample();
  for (const tarn::AppGroup& group : snapshot.groups) {
    for (const tarn::ProcessSample& process : group.processes) {
      std::printf("%d\t%s\t%s\n", process.pid, group.id.c_str(), group.name.string().c_str());
    }
  }
  return 0;
}
