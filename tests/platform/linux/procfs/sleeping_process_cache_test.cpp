// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Which processes are read again, and which are believed to be as they were.

#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <optional>

#include "platform/linux/procfs/sleeping_process_cache.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

/// Processes whose clocks the test sets, read sweep by sweep.
class QuietProcessTest : public testing::Test {
 protected:
  static constexpr std::int32_t pid = 45;  // not due to be read again before the fifth sweep from now
  static constexpr std::uint64_t oldFootprint = 200;
  static constexpr std::uint64_t newFootprint = 900;

  QuietProcessTest() {
    tree_.write("proc/stat", "btime 1700000000\n");
    parent_.writeTo(tree_);
    process_.writeTo(tree_);
    sweep();
  }

  /// The pages of its own that the process has in the next sweep.
  std::uint64_t sweep() {
    processes_.allPIDs();
    for (const std::int32_t listed : {40, pid, 99}) {
      const auto info = processes_.bsdInfo(listed);
      const auto usage = processes_.usage(listed);
      if (listed != pid) continue;
      info_ = info;
      usage_ = usage;
    }
    return usage_ ? usage_->footprint / static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)) : 0;
  }

  void changeMemory() {
    process_.statm = "5000 1000 100 5 0 123 0\n";
    process_.writeTo(tree_);
  }

  TemporaryTree tree_;
  ProcessFixture parent_{.pid = 40, .name = "shell"};
  ProcessFixture process_{.pid = pid, .ppid = "40"};
  std::map<std::int32_t, std::optional<std::uint64_t>> clocks_{{40, 1000}, {pid, 5000}};
  LinuxProcScan processes_{tree_.roots(), [this](std::int32_t asked) { return clocks_[asked]; }};
  std::optional<BsdInfo> info_;
  std::optional<ProcessUsage> usage_;
};

TEST_F(QuietProcessTest, IsNotReadAgainUntilItHasRun) {
  changeMemory();
  EXPECT_EQ(sweep(), oldFootprint) << "asleep, it can have done nothing";
  EXPECT_EQ(usage_->cpuTime, 5000U);
  EXPECT_EQ(info_->ppid, 40);
  clocks_[pid] = 5001;
  EXPECT_EQ(sweep(), newFootprint);
  EXPECT_EQ(usage_->cpuTime, 5001U);
}

TEST_F(QuietProcessTest, IsReadAgainWhenTheSweepInWhichItRanEndedBeforeItsMemoryWasRead) {
  changeMemory();
  clocks_[pid] = 5001;
  processes_.allPIDs();
  processes_.bsdInfo(pid);
  EXPECT_EQ(sweep(), newFootprint);
}

TEST_F(QuietProcessTest, HasItsOwnClockWhenItTakesAPidThatWasListedForAnother) {
  clocks_[pid] = 7000;
  processes_.allPIDs();
  process_.startTicks += 1000;
  process_.writeTo(tree_);
  clocks_[pid] = 3;
  processes_.bsdInfo(pid);
  EXPECT_EQ(processes_.usage(pid)->cpuTime, 3U);
}

TEST_F(QuietProcessTest, IsAskedForItsClockOnceInASweep) {
  std::uint64_t asked = 0;
  LinuxProcScan processes(tree_.roots(), [&asked](std::int32_t) { return std::optional(++asked); });
  for (std::uint64_t sweep = 1; sweep <= 3; ++sweep) {
    processes.allPIDs();
    processes.bsdInfo(40);
    EXPECT_EQ(processes.usage(40)->cpuTime, sweep);
  }
  EXPECT_EQ(asked, 3U);
}

TEST_F(QuietProcessTest, IsReadWhenItsParentIsGone) {
  process_.ppid = "1";
  process_.writeTo(tree_);
  EXPECT_EQ(sweep(), oldFootprint);
  EXPECT_EQ(info_->ppid, 40) << "who still lives";
  tree_.remove("proc/40");
  sweep();
  EXPECT_EQ(info_->ppid, 1);
}

TEST_F(QuietProcessTest, IsReadWhenItsParentIsAnotherProcessOfThatPid) {
  process_.ppid = "1";
  process_.writeTo(tree_);
  parent_.startTicks += 1;
  parent_.writeTo(tree_);
  clocks_[40] = 1;
  sweep();
  EXPECT_EQ(info_->ppid, 1);
}

TEST_F(QuietProcessTest, NeedNotBeListedAfterItsParent) {
  parent_.pid = 99;
  parent_.writeTo(tree_);
  process_.ppid = "99";
  process_.writeTo(tree_);
  clocks_[pid] = 6000;
  clocks_[99] = 1;
  sweep();
  sweep();  // by now its parent is known
  changeMemory();
  EXPECT_EQ(sweep(), oldFootprint);
}

TEST_F(QuietProcessTest, MayBeItsOwnGrandparentInAGarbledTable) {
  parent_.ppid = "45";
  parent_.writeTo(tree_);
  for (int times = 0; times < 20; ++times) {
    clocks_[40] = times / 2;
    clocks_[pid] = times / 3;
    sweep();
    EXPECT_EQ(info_->ppid, 40);
  }
}

TEST_F(QuietProcessTest, IsReadWhileTheMachineSwaps) {
  tree_.write("proc/swaps",
              "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n/dev/zram0 partition 8388604 4 100\n");
  changeMemory();
  EXPECT_EQ(sweep(), newFootprint);
}

TEST_F(QuietProcessTest, IsReadEveryNowAndThen) {
  changeMemory();
  int sweeps = 1;
  while (sweep() == oldFootprint && sweeps < 30) ++sweeps;
  EXPECT_LE(sweeps, 10);
  EXPECT_GT(sweeps, 1);
}

TEST_F(QuietProcessTest, IsReadWithoutAClock) {
  clocks_[pid] = std::nullopt;
  sweep();
  changeMemory();
  EXPECT_EQ(sweep(), newFootprint);
}

TEST_F(QuietProcessTest, IsAnotherOneWhenItsClockRunsBackwards) {
  process_.startTicks += 100;
  process_.owners = "7\t7\t7\t7";
  process_.writeTo(tree_);
  clocks_[pid] = 10;
  sweep();
  EXPECT_EQ(info_->uid, 7U);
}

}  // namespace
}  // namespace tarn
