// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// list_groups: samples this machine once. Prints a line for each process: pid, id of its group and name of
// the group, separated by tabs.

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
