// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The procfs of the running kernel, read about this process.

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
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

class LiveProcessTest : public testing::TestWithParam<bool> {
 protected:
  LiveProcessTest() {
    if (GetParam()) {
      processes_ = std::make_unique<SleepingProcessCache>(ProcfsReader(LinuxRoots{}));
    } else {
      processes_ = std::make_unique<ProcfsReader>(LinuxRoots{});
    }
  }

  /// The usage of this process in another sweep.
  std::optional<ProcessUsage> sweepUsage() {
    processes_->allPIDs();
    return processes_->usage(::getpid());
  }

  std::unique_ptr<ProcScan> processes_;
};

INSTANTIATE_TEST_SUITE_P(Both, LiveProcessTest, testing::Bool(), [](const auto& isCache) {
  return isCache.param ? std::string("Cache") : std::string("PlainReader");
});

TEST_P(LiveProcessTest, IsListedWithItsParentOwnerAndPath) {
  EXPECT_THAT(processes_->allPIDs(), Contains(::getpid()));
  const auto info = processes_->bsdInfo(::getpid());
  ASSERT_TRUE(info);
  EXPECT_EQ(info->ppid, ::getppid());
  EXPECT_EQ(info->uid, ::getuid());
  EXPECT_LE(info->startSec, static_cast<std::uint64_t>(::time(nullptr)) + 1);
  EXPECT_GE(info->startSec + 600, static_cast<std::uint64_t>(::time(nullptr)));
  EXPECT_EQ(processes_->path(::getpid()), std::filesystem::read_symlink("/proc/self/exe").string());
  EXPECT_EQ(processes_->processName(::getpid()),
            std::filesystem::read_symlink("/proc/self/exe").filename().string());
}

TEST_P(LiveProcessTest, FootprintGrowsByTheMemoryThatIsWritten) {
  constexpr std::size_t size = std::size_t{64} << 20U;
  void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  const auto before = sweepUsage();
  // The kernel writes the pages: for writes of the test, a sanitizer would use memory, too.
  ASSERT_EQ(::madvise(memory, size, MADV_POPULATE_WRITE), 0);
  const auto after = sweepUsage();
  ASSERT_EQ(::munmap(memory, size), 0);
  const auto freed = sweepUsage();
  ASSERT_TRUE(before && after && freed);
  EXPECT_NEAR(static_cast<double>(after->footprint - before->footprint), static_cast<double>(size),
              size * 0.02);
  EXPECT_NEAR(static_cast<double>(after->footprint - freed->footprint), static_cast<double>(size),
              size * 0.02);
}

TEST_P(LiveProcessTest, CpuTimeEqualsTheProcessClock) {
  burn(20'000'000);
  const std::uint64_t before = ownProcessorNanos();
  const auto usage = sweepUsage();
  const std::uint64_t after = ownProcessorNanos();
  ASSERT_TRUE(usage);
  EXPECT_GE(usage->cpuTime, before);
  EXPECT_LE(usage->cpuTime, after);
}

TEST_P(LiveProcessTest, CpuTimeCountsEveryThread) {
  const auto before = sweepUsage();
  std::thread([] { burn(50'000'000); }).join();
  const auto after = sweepUsage();
  ASSERT_TRUE(before && after);
  EXPECT_GE(after->cpuTime - before->cpuTime, 50'000'000U);
}

TEST_P(LiveProcessTest, ReapedChildHasNoValues) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(0);
  ASSERT_GT(child, 0);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  processes_->allPIDs();
  EXPECT_FALSE(processes_->bsdInfo(child));
  EXPECT_FALSE(processes_->usage(child));
  EXPECT_EQ(processes_->path(child), "");
  EXPECT_EQ(processes_->processName(child), "");
}

TEST(LivePort, SweepsTheRunningSystem) {
  const SamplerPort port = makeLinuxSamplerPort(LinuxRoots{});
  const double before = port.uptime();
  const auto pids = port.processes->allPIDs();
  EXPECT_THAT(pids, Contains(::getpid()));
  for (const std::int32_t pid : pids) {
    const bool hasName = !port.processes->path(pid).empty() || !port.processes->processName(pid).empty();
    // A process may exit at any time; a process that has not exited has a name.
    EXPECT_TRUE(hasName || !port.processes->bsdInfo(pid)) << pid;
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
