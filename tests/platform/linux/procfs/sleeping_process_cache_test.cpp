// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Which entries are reused, and which processes are read again.

#include "platform/linux/procfs/sleeping_process_cache.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <optional>
#include <string>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using namespace std::string_literals;

/// A process and its parent, whose clocks the test sets.
class SleepingProcessCacheTest : public testing::Test {
 protected:
  /// The cache does not read a sleeping process with this pid before the fifth sweep.
  static constexpr std::int32_t pid = 45;
  static constexpr std::int32_t parentPid = 40;
  static constexpr std::uint64_t oldFootprint = 200;
  static constexpr std::uint64_t newFootprint = 900;

  SleepingProcessCacheTest() {
    tree_.write("proc/stat", "btime 1700000000\n");
    parent_.writeTo(tree_);
    process_.writeTo(tree_);
    sweep();
  }

  /// Sweeps; returns the footprint of the process in pages, 0 if it has no usage.
  std::uint64_t sweep() {
    cache_.allPIDs();
    info_ = cache_.bsdInfo(pid);
    usage_ = cache_.usage(pid);
    return usage_ ? usage_->footprint / static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)) : 0;
  }

  void changeMemory() {
    process_.statm = "5000 1000 100 5 0 123 0\n";
    process_.writeTo(tree_);
  }

  std::optional<std::uint64_t> readClock(std::int32_t clockPid) {
    ++clockReadings_[clockPid];
    return clocks_[clockPid];
  }

  TemporaryTree tree_;
  ProcessFixture parent_{.pid = parentPid, .name = "shell"};
  ProcessFixture process_{.pid = pid, .ppid = "40"};
  std::map<std::int32_t, std::optional<std::uint64_t>> clocks_{{parentPid, 1000}, {pid, 5000}};
  std::map<std::int32_t, int> clockReadings_;
  SleepingProcessCache cache_{
      ProcfsReader(tree_.roots(), [this](std::int32_t clockPid) { return readClock(clockPid); })};
  std::optional<BsdInfo> info_;
  std::optional<ProcessUsage> usage_;
};

TEST_F(SleepingProcessCacheTest, ReadsAProcessAgainOnlyWhenItHasRun) {
  changeMemory();
  EXPECT_EQ(sweep(), oldFootprint);
  EXPECT_EQ(usage_->cpuTime, 5000U);
  EXPECT_EQ(info_->ppid, parentPid);
  clocks_[pid] = 5001;
  EXPECT_EQ(sweep(), newFootprint);
  EXPECT_EQ(usage_->cpuTime, 5001U);
}

TEST_F(SleepingProcessCacheTest, ReadsAllThatChangedWhenTheSweepBegins) {
  changeMemory();
  clocks_[pid] = 5001;
  cache_.allPIDs();
  tree_.remove("proc/45");
  EXPECT_EQ(cache_.bsdInfo(pid)->ppid, parentPid);
  EXPECT_EQ(cache_.usage(pid)->cpuTime, 5001U);
  EXPECT_TRUE(cache_.execId(pid));
}

TEST_F(SleepingProcessCacheTest, ReadsAgainAfterASweepWithoutACallOfUsage) {
  changeMemory();
  clocks_[pid] = 5001;
  cache_.allPIDs();
  cache_.bsdInfo(pid);
  EXPECT_EQ(sweep(), newFootprint);
}

TEST_F(SleepingProcessCacheTest, ReadsAgainAfterASweepInWhichMemoryWasUnreadable) {
  clocks_[pid] = 5001;
  changeMemory();
  tree_.remove("proc/45/statm");
  sweep();
  EXPECT_TRUE(info_);
  EXPECT_FALSE(usage_);
  changeMemory();
  EXPECT_EQ(sweep(), newFootprint);
}

TEST_F(SleepingProcessCacheTest, ReadsTheClockBeforeTheFiles) {
  // The process runs after its clock was read, so the figures that were read belong to the next clock value.
  int reading = 0;
  SleepingProcessCache cache(ProcfsReader(tree_.roots(), [&](std::int32_t clockPid) {
    const std::uint64_t clock = clockPid == pid && ++reading > 1 ? 2 : 1;
    if (clockPid == pid && reading == 1) changeMemory();
    return std::optional(clock);
  }));
  cache.allPIDs();
  EXPECT_EQ(cache.usage(pid)->footprint, newFootprint * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)));
  process_.statm = "5000 300 100 5 0 123 0\n";
  process_.writeTo(tree_);
  cache.allPIDs();
  EXPECT_EQ(cache.usage(pid)->footprint, oldFootprint * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)));
}

TEST_F(SleepingProcessCacheTest, ReadsTheClockAgainIfThePidWasReusedAfterItWasRead) {
  std::uint64_t clock = 7000;
  SleepingProcessCache cache(ProcfsReader(tree_.roots(), [&](std::int32_t clockPid) {
    const std::uint64_t read = clockPid == pid ? clock : 1;
    if (read == 7001) {
      process_.startTicks += 1000;
      process_.writeTo(tree_);
      clock = 3;
    }
    return std::optional(read);
  }));
  cache.allPIDs();
  clock = 7001;
  cache.allPIDs();
  EXPECT_EQ(cache.usage(pid)->cpuTime, 3U);
}

TEST_F(SleepingProcessCacheTest, ReadsEachClockOncePerSweep) {
  for (std::uint64_t sweeps = 1; sweeps <= 3; ++sweeps) {
    clockReadings_.clear();
    clocks_[pid] = 6000 + sweeps;
    sweep();
    EXPECT_EQ(usage_->cpuTime, 6000 + sweeps);
    EXPECT_EQ(clockReadings_, (std::map<std::int32_t, int>{{parentPid, 1}, {pid, 1}}));
  }
}

TEST_F(SleepingProcessCacheTest, ReadsAProcessAgainWhenItsParentExited) {
  process_.ppid = "1";
  process_.writeTo(tree_);
  EXPECT_EQ(sweep(), oldFootprint);
  EXPECT_EQ(info_->ppid, parentPid) << "its parent has not exited";
  tree_.remove("proc/40");
  sweep();
  EXPECT_EQ(info_->ppid, 1);
}

TEST_F(SleepingProcessCacheTest, ReadsAProcessAgainWhenItsParentBecameAZombie) {
  process_.ppid = "1";
  process_.writeTo(tree_);
  std::string stat = parent_.stat();
  tree_.write("proc/40/stat", stat.replace(stat.find(") S"), 3, ") Z"));
  clocks_[parentPid] = 1001;
  sweep();
  EXPECT_EQ(info_->ppid, 1);
}

TEST_F(SleepingProcessCacheTest, ReadsAProcessAgainWhenAnotherProcessHasItsParentsPid) {
  process_.ppid = "1";
  process_.writeTo(tree_);
  parent_.startTicks += 1;
  parent_.writeTo(tree_);
  clocks_[parentPid] = 1;
  sweep();
  EXPECT_EQ(info_->ppid, 1);
}

TEST_F(SleepingProcessCacheTest, ParentMayBeListedAfterItsChild) {
  parent_.pid = 99;
  parent_.writeTo(tree_);
  process_.ppid = "99";
  process_.writeTo(tree_);
  clocks_[pid] = 6000;
  clocks_[99] = 1;
  sweep();
  changeMemory();
  EXPECT_EQ(sweep(), oldFootprint);
}

TEST_F(SleepingProcessCacheTest, AcceptsACycleOfParents) {
  parent_.ppid = "45";
  parent_.writeTo(tree_);
  for (int times = 0; times < 20; ++times) {
    clocks_[parentPid] = times / 2;
    clocks_[pid] = times / 3;
    sweep();
    EXPECT_EQ(info_->ppid, parentPid);
  }
}

TEST_F(SleepingProcessCacheTest, ReadsEveryProcessWhileSwapIsInUse) {
  tree_.write("proc/swaps",
              "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n/dev/zram0 partition 8388604 4 100\n");
  changeMemory();
  EXPECT_EQ(sweep(), newFootprint);
}

TEST_F(SleepingProcessCacheTest, ReadsEveryProcessAtLeastInEveryTenthSweep) {
  changeMemory();
  int sweeps = 1;
  while (sweep() == oldFootprint && sweeps < 30) ++sweeps;
  EXPECT_LE(sweeps, 10);
  EXPECT_GT(sweeps, 1);
}

TEST_F(SleepingProcessCacheTest, ReadsAProcessWithoutAClockInEverySweep) {
  clocks_[pid] = std::nullopt;
  sweep();
  changeMemory();
  EXPECT_EQ(sweep(), newFootprint);
}

TEST_F(SleepingProcessCacheTest, UsesTheTicksOfTheSweepWithoutAClock) {
  const std::uint64_t tick = 1'000'000'000 / static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
  clocks_[pid] = std::nullopt;
  process_.userTicks = 0;
  process_.systemTicks = 1;
  process_.writeTo(tree_);
  sweep();
  process_.systemTicks = 2;
  process_.writeTo(tree_);
  EXPECT_EQ(cache_.usage(pid)->cpuTime, tick);
  sweep();
  EXPECT_EQ(usage_->cpuTime, 2 * tick);
}

TEST_F(SleepingProcessCacheTest, TreatsAClockThatRanBackwardsAsAnotherProcess) {
  process_.startTicks += 100;
  process_.owners = "7\t7\t7\t7";
  process_.writeTo(tree_);
  clocks_[pid] = 10;
  sweep();
  EXPECT_EQ(info_->uid, 7U);
}

TEST_F(SleepingProcessCacheTest, ReadsTheOwnerOncePerProgram) {
  tree_.remove("proc/45/status");
  clocks_[pid] = 5001;
  sweep();
  ASSERT_TRUE(info_);
  EXPECT_EQ(info_->uid, 1000U);
}

TEST_F(SleepingProcessCacheTest, ReadsTheCommandLineOncePerProgram) {
  process_.name = "gnome-terminal-";
  process_.commandLine = "/usr/libexec/gnome-terminal-server\0"s;
  process_.writeTo(tree_);
  clocks_[pid] = 5001;
  sweep();
  EXPECT_EQ(cache_.processName(pid), "gnome-terminal-server");
  tree_.remove("proc/45/cmdline");
  clocks_[pid] = 5002;
  sweep();
  EXPECT_EQ(cache_.processName(pid), "gnome-terminal-server");
  process_.name = "other";
  process_.writeTo(tree_);
  clocks_[pid] = 5003;
  sweep();
  EXPECT_EQ(cache_.processName(pid), "other") << "another program in the same process";
}

TEST_F(SleepingProcessCacheTest, RenamedKernelThreadIsTheSameProcess) {
  ProcessFixture worker{.pid = 9, .name = "kworker/0:1-events", .ppid = "2", .flags = 69238880};
  worker.writeTo(tree_);
  sweep();
  EXPECT_EQ(cache_.bsdInfo(9)->uid, 1000U);
  EXPECT_EQ(cache_.processName(9), "kworker/0:1-events");
  EXPECT_EQ(cache_.execId(9), std::nullopt) << "a kernel thread executes no program";
  worker.name = "kworker/0:1-mm_percpu_wq";
  worker.owners = "7\t7\t7\t7";
  worker.commandLine = "kworker/0:1-mm_percpu_wq-and-more";
  worker.writeTo(tree_);
  sweep();
  EXPECT_EQ(cache_.bsdInfo(9)->uid, 1000U) << "the owner is read once";
  EXPECT_EQ(cache_.processName(9), "kworker/0:1-mm_percpu_wq");
  worker.startTicks += 1;
  worker.writeTo(tree_);
  sweep();
  EXPECT_EQ(cache_.bsdInfo(9)->uid, 7U) << "another kernel thread with the same pid";
}

TEST_F(SleepingProcessCacheTest, ExecIdIdentifiesAProgramOfAProcess) {
  SleepingProcessCache fresh(ProcfsReader(tree_.roots(), [](std::int32_t) { return std::nullopt; }));
  EXPECT_EQ(fresh.execId(pid), std::nullopt) << "not read yet";

  const auto first = cache_.execId(pid);
  ASSERT_TRUE(first);
  EXPECT_NE(cache_.execId(parentPid), first);
  sweep();
  EXPECT_EQ(cache_.execId(pid), first);
  process_.name = "firefox";
  process_.writeTo(tree_);
  clocks_[pid] = 5001;
  sweep();
  const auto second = cache_.execId(pid);
  ASSERT_TRUE(second);
  EXPECT_NE(second, first) << "another program";
  process_.startTicks += 1;
  process_.writeTo(tree_);
  clocks_[pid] = 1;
  sweep();
  ASSERT_TRUE(cache_.execId(pid));
  EXPECT_NE(cache_.execId(pid), second) << "another process";
  EXPECT_NE(cache_.execId(pid), first) << "an execId is never used again";
  tree_.remove("proc/45");
  sweep();
  EXPECT_EQ(cache_.execId(pid), std::nullopt);
}

TEST_F(SleepingProcessCacheTest, PrunesProcessesThatAreNotListed) {
  EXPECT_EQ(cache_.size(), 2U);
  tree_.remove("proc/45");
  sweep();
  sweep();
  EXPECT_EQ(cache_.size(), 1U);
}

}  // namespace
}  // namespace tarn
