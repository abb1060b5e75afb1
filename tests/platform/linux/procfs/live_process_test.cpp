// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The running kernel's own process table, asked about this very process.

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <thread>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "platform/linux/procfs/sleeping_process_cache.hpp"
#include "sampling/process_source.hpp"

namespace tarn {
namespace {

using testing::Contains;

std::uint64_t ownProcessorNanos() {
  struct timespec time {};
  EXPECT_EQ(::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time), 0);
  return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<std::uint64_t>(time.tv_nsec);
}

void burn(std::uint64_t nanos) {
  const std::uint64_t start = ownProcessorNanos();
  while (ownProcessorNanos() - start < nanos) {
  }
}

TEST(LiveProcess, IsListedWithItsParentOwnerAndPath) {
  LinuxProcScan processes(LinuxRoots{});
  EXPECT_THAT(processes.allPIDs(), Contains(::getpid()));
  const auto info = processes.bsdInfo(::getpid());
  ASSERT_TRUE(info);
  EXPECT_EQ(info->ppid, ::getppid());
  EXPECT_EQ(info->uid, ::getuid());
  EXPECT_LE(info->startSec, static_cast<std::uint64_t>(::time(nullptr)) + 1);
  EXPECT_GE(info->startSec + 600, static_cast<std::uint64_t>(::time(nullptr)));
  EXPECT_EQ(processes.path(::getpid()), std::filesystem::read_symlink("/proc/self/exe").string());
  EXPECT_EQ(processes.processName(::getpid()),
            std::filesystem::read_symlink("/proc/self/exe").filename().string());
}

TEST(LiveProcess, ItsFootprintGrowsByTheMemoryItTouches) {
  constexpr std::size_t size = std::size_t{64} << 20U;
  LinuxProcScan processes(LinuxRoots{});
  void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  const auto before = processes.footprint(::getpid());
  // The kernel touches it: what a sanitizer would note of a write of ours is memory, too.
  ASSERT_EQ(::madvise(memory, size, MADV_POPULATE_WRITE), 0);
  const auto after = processes.footprint(::getpid());
  ASSERT_EQ(::munmap(memory, size), 0);
  const auto freed = processes.footprint(::getpid());
  ASSERT_TRUE(before && after && freed);
  EXPECT_NEAR(static_cast<double>(*after - *before), static_cast<double>(size), size * 0.02);
  EXPECT_NEAR(static_cast<double>(*after - *freed), static_cast<double>(size), size * 0.02);
}

TEST(LiveProcess, ItsProcessorTimeIsThatOfItsOwnClock) {
  LinuxProcScan processes(LinuxRoots{});
  burn(20'000'000);
  const std::uint64_t before = ownProcessorNanos();
  const auto usage = processes.usage(::getpid());
  const std::uint64_t after = ownProcessorNanos();
  ASSERT_TRUE(usage);
  EXPECT_GE(usage->cpuTime, before);
  EXPECT_LE(usage->cpuTime, after);
}

TEST(LiveProcess, EveryThreadCounts) {
  LinuxProcScan processes(LinuxRoots{});
  const auto before = processes.usage(::getpid());
  std::thread([] { burn(50'000'000); }).join();
  processes.allPIDs();  // the next sweep
  const auto after = processes.usage(::getpid());
  ASSERT_TRUE(before && after);
  EXPECT_GE(after->cpuTime - before->cpuTime, 50'000'000U);
}

TEST(LiveProcess, AChildThatEndedAndIsGoneGivesNoValue) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(0);
  ASSERT_GT(child, 0);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  LinuxProcScan processes(LinuxRoots{});
  EXPECT_FALSE(processes.bsdInfo(child));
  EXPECT_FALSE(processes.usage(child));
  EXPECT_EQ(processes.path(child), "");
  EXPECT_EQ(processes.processName(child), "");
}

TEST(LivePort, SweepsTheRunningSystem) {
  const SamplerPort port = makeLinuxSamplerPort(LinuxRoots{});
  const double before = port.uptime();
  const auto pids = port.processes->allPIDs();
  EXPECT_THAT(pids, Contains(::getpid()));
  for (const std::int32_t pid : pids) {
    const bool named = !port.processes->path(pid).empty() || !port.processes->processName(pid).empty();
    // A process may end at any time; one that is still there has a name.
    EXPECT_TRUE(named || !port.processes->bsdInfo(pid)) << pid;
  }
  const SystemMemory memory = port.memory->read();
  EXPECT_GT(memory.totalRAM, 0U);
  EXPECT_GT(memory.wired, 0U);
  EXPECT_LT(memory.wired, memory.totalRAM);
  EXPECT_GT(memory.cachedFiles, 0U);
  EXPECT_LT(memory.cachedFiles, memory.totalRAM);
  EXPECT_GT(port.uptime(), before);
  EXPECT_TRUE(port.bundleInformation("/nowhere/a.desktop").empty());
}

}  // namespace
}  // namespace tarn
