// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Counts the allocations of a sweep over this machine's processes.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"
#include "sampling/memory_sampler.hpp"
#include "support/allocation_count.hpp"
#include "support/idle_processes.hpp"

namespace tarn {
namespace {

/// Allocations of a sweep that do not depend on the number of processes.
constexpr std::size_t fixedAllocations = 30;

TEST(SweepAllocations, AreAtMostOnePerProcess) {
  const IdleProcesses idle(200);
  MemorySampler sampler(makeLinuxSamplerPort(LinuxRoots{}));
  for (int warmUp = 0; warmUp < 3; ++warmUp) sampler.sample();
  // A sweep makes more allocations for new processes, so the minimum over several sweeps is compared.
  double minimum = 10;  // more than the limit
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (minimum > 1 && std::chrono::steady_clock::now() < deadline) {
    MemorySnapshot snapshot;
    const std::size_t count = allocationsOf([&] { snapshot = sampler.sample(); });
    std::size_t processes = 0;
    for (const AppGroup& group : snapshot.groups) processes += group.processCount();
    minimum =
        std::min(minimum, static_cast<double>(count - fixedAllocations) / static_cast<double>(processes));
  }
  std::printf("%.3f allocations per process\n", minimum);
  EXPECT_LE(minimum, 1);
}

TEST(SweepAllocations, ParsersAllocateNothing) {
  constexpr std::string_view stat =
      "40 (a process with a name) S 1 1 1 0 -1 4194304 138 0 1 0 100 50 7 8 20 0 1 0 5000 2990080 421 1\n";
  constexpr std::string_view status =
      "Name:\ta\nUid:\t1000\t1001\t1002\t1003\nNSpid:\t40\nVmSwap:\t  12 kB\n";
  const std::size_t count = allocationsOf([&] {
    EXPECT_EQ(parseProcessStat(stat)->startTicks, 5000U);
    EXPECT_EQ(parseProcessPages("5000 300 100 5 0 123 0\n")->resident, 300U);
    EXPECT_EQ(parseRealOwner(status), 1000U);
    EXPECT_EQ(parseSwappedBytes(status), 12288U);
    EXPECT_EQ(parseInnermostPid(status), 40);
    EXPECT_EQ(completedName("gnome-terminal-", std::string_view("/usr/libexec/gnome-terminal-server\0", 35)),
              "gnome-terminal-server");
  });
  EXPECT_EQ(count, 0U);
}

}  // namespace
}  // namespace tarn
