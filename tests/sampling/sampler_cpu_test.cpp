// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sampling/memory_sampler.hpp"
#include "support/fake_machine.hpp"

namespace tarn {
namespace {

constexpr std::uint64_t second = 1'000'000'000;  // nanoseconds

/// One process, pid 10, without an application. Sweeps start three seconds apart by default.
class SamplerCPU : public ::testing::Test {
 protected:
  SamplerCPU() {
    machine_.processes = {{.pid = 10, .path = "/usr/bin/worker"}};
    process(10).usage->cpuTime = 50 * second;
  }

  FakeProcess& process(std::int32_t pid) { return machine_.process(pid); }
  void addCPUTime(std::int32_t pid, std::uint64_t nanoseconds) { process(pid).usage->cpuTime += nanoseconds; }

  MemorySnapshot sweepAfter(double seconds = 3) {
    start_ += seconds;
    machine_.uptime = start_;
    return sampler_.sample();
  }

  static const AppGroup* groupOf(const MemorySnapshot& snapshot, const std::string& id) {
    for (const AppGroup& group : snapshot.groups) {
      if (group.id == id) return &group;
    }
    return nullptr;
  }

  /// The unsmoothed CPU percentage of a process; -1 when the snapshot does not contain it.
  static double cpuOf(const MemorySnapshot& snapshot, std::int32_t pid) {
    for (const AppGroup& group : snapshot.groups) {
      for (const ProcessSample& process : group.processes) {
        if (process.pid == pid) return process.cpuPercent;
      }
    }
    return -1;
  }

  FakeMachine machine_;
  MemorySampler sampler_{samplerPortOf(machine_)};
  double start_ = 1000;
};

TEST_F(SamplerCPU, IsZeroInTheFirstSweep) {
  machine_.processes.push_back({.pid = 11, .path = "/opt/A.app/a"});
  const MemorySnapshot snapshot = sweepAfter();
  ASSERT_EQ(snapshot.groups.size(), 2U);
  for (const AppGroup& group : snapshot.groups) {
    EXPECT_EQ(group.cpuPercent, 0);
    for (const ProcessSample& process : group.processes) EXPECT_EQ(process.cpuPercent, 0);
  }
}

TEST_F(SamplerCPU, IsPercentOfOneCoreSinceThePreviousSweep) {
  sweepAfter();
  addCPUTime(10, 3 * second / 4);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(3), 10), 25);
}

TEST_F(SamplerCPU, ExceedsHundredOnSeveralCores) {
  sweepAfter();
  addCPUTime(10, 8 * second);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(2), 10), 400);
}

TEST_F(SamplerCPU, MeasuresTheIntervalBetweenSweepStarts) {
  machine_.timePerSweep = 2;
  sweepAfter();
  addCPUTime(10, 1 * second);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(4), 10), 25);
}

TEST_F(SamplerCPU, KeepsPrecisionForLargeCPUTimes) {
  process(10).usage->cpuTime = 1'000'000 * second;
  sweepAfter();
  addCPUTime(10, 1);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(1), 10), 1e-7);
}

TEST_F(SamplerCPU, IsZeroInTheFirstSweepOfANewProcess) {
  sweepAfter();
  machine_.processes.push_back({.pid = 11, .usage = ProcessUsage{.cpuTime = 7 * second}});
  EXPECT_EQ(cpuOf(sweepAfter(), 11), 0);
  addCPUTime(11, 3 * second);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(3), 11), 100);
}

TEST_F(SamplerCPU, IsZeroWhenAPidIsReused) {
  sweepAfter();
  process(10).info->startSec += 1;
  addCPUTime(10, 3 * second);
  EXPECT_EQ(cpuOf(sweepAfter(), 10), 0);
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(3), 10), 100);
}

TEST_F(SamplerCPU, IsZeroWhenCPUTimeDecreases) {
  sweepAfter();
  process(10).usage->cpuTime = 40 * second;
  EXPECT_EQ(cpuOf(sweepAfter(), 10), 0);
  process(10).usage->cpuTime = 43 * second;
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(3), 10), 100);
}

TEST_F(SamplerCPU, IsZeroWhenUptimeDoesNotAdvance) {
  sweepAfter();
  addCPUTime(10, second);
  EXPECT_EQ(cpuOf(sweepAfter(0), 10), 0);
  addCPUTime(10, second);
  EXPECT_EQ(cpuOf(sweepAfter(-5), 10), 0);
}

TEST_F(SamplerCPU, UsesTheLatestSweepAsBaseAfterUptimeWentBackwards) {
  sweepAfter();
  sweepAfter(-100);
  addCPUTime(10, second);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(4), 10), 25);
}

TEST_F(SamplerCPU, StaysPlausibleWhenTheClockJumps) {
  constexpr double hours = 8 * 3600.0;
  sweepAfter();
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(3), 10), 100);
  addCPUTime(10, 3 * second);
  MemorySnapshot snapshot = sweepAfter(hours);
  EXPECT_NEAR(cpuOf(snapshot, 10), 0.01, 0.001) << "the CPU time divided by the long interval";
  EXPECT_LT(groupOf(snapshot, "pid:10")->cpuPercent, 100);
  addCPUTime(10, 3 * second);
  snapshot = sweepAfter(-hours);
  EXPECT_EQ(cpuOf(snapshot, 10), 0);
  EXPECT_GE(groupOf(snapshot, "pid:10")->cpuPercent, 0);
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(3), 10), 100) << "correct in the next sweep";
}

TEST_F(SamplerCPU, StaysPlausibleWhenTheClockDoesNotAdvance) {
  sweepAfter();
  addCPUTime(10, 3 * second);
  sweepAfter(3);
  for (int sweep = 0; sweep < 3; ++sweep) {
    addCPUTime(10, 3 * second);
    const MemorySnapshot snapshot = sweepAfter(0);
    EXPECT_EQ(cpuOf(snapshot, 10), 0);
    EXPECT_LE(groupOf(snapshot, "pid:10")->cpuPercent, 100);
  }
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(3), 10), 100) << "measured from the previous sweep";
}

TEST_F(SamplerCPU, IsZeroWithoutStartTimeAndDropsThePreviousTime) {
  sweepAfter();
  const auto info = std::exchange(process(10).info, std::nullopt);
  addCPUTime(10, second);
  EXPECT_EQ(cpuOf(sweepAfter(), 10), 0);
  process(10).info = info;
  addCPUTime(10, second);
  EXPECT_EQ(cpuOf(sweepAfter(), 10), 0);
  addCPUTime(10, second);
  EXPECT_DOUBLE_EQ(cpuOf(sweepAfter(4), 10), 25);
}

TEST_F(SamplerCPU, DropsThePreviousTimeWhenUsageIsUnavailable) {
  sweepAfter();
  const auto usage = std::exchange(process(10).usage, std::nullopt);
  EXPECT_EQ(cpuOf(sweepAfter(), 10), -1) << "not in the snapshot";
  process(10).usage = usage;
  addCPUTime(10, second);
  EXPECT_EQ(cpuOf(sweepAfter(), 10), 0);
}

TEST_F(SamplerCPU, SmoothsGroupsWithWeightOfTwoFifths) {
  sweepAfter();
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 40);
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 64);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 38.4)
      << "a decrease is smoothed with the same weight";
}

TEST_F(SamplerCPU, SmoothsTheGroupSumButNotItsProcesses) {
  machine_.processes = {{.pid = 20, .path = "/opt/A.app/a"}, {.pid = 21, .path = "/opt/A.app/b"}};
  sweepAfter();
  addCPUTime(20, 1 * second);
  addCPUTime(21, 2 * second);
  const MemorySnapshot snapshot = sweepAfter(1);
  EXPECT_DOUBLE_EQ(cpuOf(snapshot, 20), 100);
  EXPECT_DOUBLE_EQ(cpuOf(snapshot, 21), 200);
  EXPECT_DOUBLE_EQ(groupOf(snapshot, "/opt/A.app")->cpuPercent, 120);
}

TEST_F(SamplerCPU, DoesNotSmoothTheFirstValueOfAGroup) {
  sweepAfter();
  machine_.processes.push_back({.pid = 20, .path = "/opt/A.app/a"});
  process(10).info->ppid = 20;
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "/opt/A.app")->cpuPercent, 100);
}

TEST_F(SamplerCPU, RestartsSmoothingWhenAGroupReappears) {
  machine_.processes.push_back({.pid = 20, .path = "/opt/A.app/a"});
  sweepAfter();
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 40);

  process(10).info->ppid = 20;
  EXPECT_EQ(groupOf(sweepAfter(), "pid:10"), nullptr) << "now in the group of its parent's application";

  process(10).info->ppid = 1;
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 100);
}

TEST_F(SamplerCPU, KeepsSmoothingAGroupWhenAnotherIsPruned) {
  machine_.processes.push_back({.pid = 20, .path = "/opt/A.app/a"});
  sweepAfter();
  addCPUTime(10, 3 * second);
  sweepAfter(3);
  machine_.end(20);
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 64);
  addCPUTime(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 78.4);
}

}  // namespace
}  // namespace tarn
