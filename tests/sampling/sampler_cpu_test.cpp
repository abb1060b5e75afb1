// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sampling/memory_sampler.hpp"
#include "support/fake_machine.hpp"

namespace tarn {
namespace {

constexpr std::uint64_t second = 1'000'000'000;  // nanoseconds

/// One process, 10, which stands for itself; sweeps start three seconds apart unless told otherwise.
class SamplerCPU : public ::testing::Test {
 protected:
  SamplerCPU() {
    machine_.processes = {{.pid = 10, .path = "/usr/bin/worker"}};
    process(10).usage->cpuTime = 50 * second;
  }

  FakeProcess& process(std::int32_t pid) { return machine_.process(pid); }
  void burn(std::int32_t pid, std::uint64_t nanoseconds) { process(pid).usage->cpuTime += nanoseconds; }

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

  /// The unsmoothed share of a process.
  static double share(const MemorySnapshot& snapshot, std::int32_t pid) {
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

TEST_F(SamplerCPU, IsZeroForEveryoneInTheFirstSweep) {
  machine_.processes.push_back({.pid = 11, .path = "/opt/A.app/a"});
  const MemorySnapshot snapshot = sweepAfter();
  ASSERT_EQ(snapshot.groups.size(), 2U);
  for (const AppGroup& group : snapshot.groups) {
    EXPECT_EQ(group.cpuPercent, 0);
    for (const ProcessSample& process : group.processes) EXPECT_EQ(process.cpuPercent, 0);
  }
}

TEST_F(SamplerCPU, IsTheShareOfOneCoreSinceTheSweepBefore) {
  sweepAfter();
  burn(10, 3 * second / 4);
  EXPECT_DOUBLE_EQ(share(sweepAfter(3), 10), 25);
}

TEST_F(SamplerCPU, ExceedsAHundredOnSeveralCores) {
  sweepAfter();
  burn(10, 8 * second);
  EXPECT_DOUBLE_EQ(share(sweepAfter(2), 10), 400);
}

TEST_F(SamplerCPU, CountsTheIntervalFromStartToStartOfTheSweeps) {
  machine_.timePerSweep = 2;
  sweepAfter();
  burn(10, 1 * second);
  EXPECT_DOUBLE_EQ(share(sweepAfter(4), 10), 25);
}

TEST_F(SamplerCPU, IsExactForTimesTooLongForSmallNumbers) {
  process(10).usage->cpuTime = 1'000'000 * second;
  sweepAfter();
  burn(10, 1);
  EXPECT_DOUBLE_EQ(share(sweepAfter(1), 10), 1e-7);
}

TEST_F(SamplerCPU, IsZeroForANewProcessAndCountsFromThereOn) {
  sweepAfter();
  machine_.processes.push_back({.pid = 11, .usage = ProcessUsage{.cpuTime = 7 * second}});
  EXPECT_EQ(share(sweepAfter(), 11), 0);
  burn(11, 3 * second);
  EXPECT_DOUBLE_EQ(share(sweepAfter(3), 11), 100);
}

TEST_F(SamplerCPU, IsZeroForAPidThatANewProcessTookOver) {
  sweepAfter();
  process(10).info->startSec += 1;
  burn(10, 3 * second);
  EXPECT_EQ(share(sweepAfter(), 10), 0);
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(share(sweepAfter(3), 10), 100);
}

TEST_F(SamplerCPU, IsZeroWhenTheCounterRanBackwardsAndCountsFromThereOn) {
  sweepAfter();
  process(10).usage->cpuTime = 40 * second;
  EXPECT_EQ(share(sweepAfter(), 10), 0);
  process(10).usage->cpuTime = 43 * second;
  EXPECT_DOUBLE_EQ(share(sweepAfter(3), 10), 100);
}

TEST_F(SamplerCPU, IsZeroForEveryoneWhenTheUptimeDidNotAdvance) {
  sweepAfter();
  burn(10, second);
  EXPECT_EQ(share(sweepAfter(0), 10), 0);
  burn(10, second);
  EXPECT_EQ(share(sweepAfter(-5), 10), 0);
}

TEST_F(SamplerCPU, CountsFromTheLatestSweepAlsoWhenItsUptimeRanBackwards) {
  sweepAfter();
  sweepAfter(-100);
  burn(10, second);
  EXPECT_DOUBLE_EQ(share(sweepAfter(4), 10), 25);
}

TEST_F(SamplerCPU, IsNeverWildWhenTheClockJumps) {
  constexpr double hours = 8 * 3600.0;
  sweepAfter();
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(share(sweepAfter(3), 10), 100);
  burn(10, 3 * second);
  MemorySnapshot snapshot = sweepAfter(hours);
  EXPECT_NEAR(share(snapshot, 10), 0.01, 0.001) << "what it did, over all that time";
  EXPECT_LT(groupOf(snapshot, "pid:10")->cpuPercent, 100);
  burn(10, 3 * second);
  snapshot = sweepAfter(-hours);
  EXPECT_EQ(share(snapshot, 10), 0);
  EXPECT_GE(groupOf(snapshot, "pid:10")->cpuPercent, 0);
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(share(sweepAfter(3), 10), 100) << "and right again at once";
}

TEST_F(SamplerCPU, IsNeverWildWhenTheClockStandsStill) {
  sweepAfter();
  burn(10, 3 * second);
  sweepAfter(3);
  for (int sweep = 0; sweep < 3; ++sweep) {
    burn(10, 3 * second);
    const MemorySnapshot snapshot = sweepAfter(0);
    EXPECT_EQ(share(snapshot, 10), 0);
    EXPECT_LE(groupOf(snapshot, "pid:10")->cpuPercent, 100);
  }
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(share(sweepAfter(3), 10), 100) << "counted from the sweep before";
}

TEST_F(SamplerCPU, IsZeroWithoutTheStartTimeAndForgetsWhatItKnew) {
  sweepAfter();
  const auto info = std::exchange(process(10).info, std::nullopt);
  burn(10, second);
  EXPECT_EQ(share(sweepAfter(), 10), 0);
  process(10).info = info;
  burn(10, second);
  EXPECT_EQ(share(sweepAfter(), 10), 0);
  burn(10, second);
  EXPECT_DOUBLE_EQ(share(sweepAfter(4), 10), 25);
}

TEST_F(SamplerCPU, ForgetsAProcessWhoseUsageWasRefusedForASweep) {
  sweepAfter();
  const auto usage = std::exchange(process(10).usage, std::nullopt);
  EXPECT_EQ(share(sweepAfter(), 10), -1) << "left out of the snapshot";
  process(10).usage = usage;
  burn(10, second);
  EXPECT_EQ(share(sweepAfter(), 10), 0);
}

TEST_F(SamplerCPU, OfAGroupMovesTwoFifthsOfTheWayToTheNewValue) {
  sweepAfter();
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 40);
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 64);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 38.4) << "and down again";
}

TEST_F(SamplerCPU, OfAGroupSmoothsTheSumOfItsMembersWhichStayUnsmoothed) {
  machine_.processes = {{.pid = 20, .path = "/opt/A.app/a"}, {.pid = 21, .path = "/opt/A.app/b"}};
  sweepAfter();
  burn(20, 1 * second);
  burn(21, 2 * second);
  const MemorySnapshot snapshot = sweepAfter(1);
  EXPECT_DOUBLE_EQ(share(snapshot, 20), 100);
  EXPECT_DOUBLE_EQ(share(snapshot, 21), 200);
  EXPECT_DOUBLE_EQ(groupOf(snapshot, "/opt/A.app")->cpuPercent, 120);
}

TEST_F(SamplerCPU, OfANewGroupIsShownUnsmoothedAtOnce) {
  sweepAfter();
  machine_.processes.push_back({.pid = 20, .path = "/opt/A.app/a"});
  process(10).info->ppid = 20;
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "/opt/A.app")->cpuPercent, 100);
}

TEST_F(SamplerCPU, OfAGroupThatVanishedStartsAfreshWhenItComesBack) {
  machine_.processes.push_back({.pid = 20, .path = "/opt/A.app/a"});
  sweepAfter();
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 40);

  process(10).info->ppid = 20;
  EXPECT_EQ(groupOf(sweepAfter(), "pid:10"), nullptr) << "counted with the application that started it";

  process(10).info->ppid = 1;
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 100);
}

TEST_F(SamplerCPU, OfAGroupThatStaysIsRememberedWhenAnotherVanishes) {
  machine_.processes.push_back({.pid = 20, .path = "/opt/A.app/a"});
  sweepAfter();
  burn(10, 3 * second);
  sweepAfter(3);
  machine_.end(20);
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 64);
  burn(10, 3 * second);
  EXPECT_DOUBLE_EQ(groupOf(sweepAfter(3), "pid:10")->cpuPercent, 78.4);
}

}  // namespace
}  // namespace tarn
