// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/psi/pressure_level.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace tarn {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using enum MemoryPressure;

PsiStats totals(std::uint64_t some, std::uint64_t full) {
  return {{0, some}, {0, full}};
}

PsiStats averages(double some, double full) {
  return {{some, 0}, {full, 0}};
}

MemoryInfo memoryInfo(std::uint64_t available, std::uint64_t total, std::uint64_t swapFree = 0,
                      std::uint64_t swapTotal = 0) {
  MemoryInfo info;
  info.total = total;
  info.available = available;
  info.swapFree = swapFree;
  info.swapTotal = swapTotal;
  return info;
}

TEST(PsiTrigger, HasLineThresholdAndWindowInMicroseconds) {
  EXPECT_EQ(psiTrigger(warning), "some 200000 2000000");
  EXPECT_EQ(psiTrigger(critical), "full 400000 2000000");
}

TEST(StallLevel, ThresholdsAre200And400MillisecondsOfTwoSeconds) {
  const auto within2s = [](std::uint64_t some, std::uint64_t full) {
    return stallLevel(totals(1000, 1000), totals(1000 + some, 1000 + full), seconds(2));
  };
  EXPECT_EQ(within2s(199'999, 0), normal);
  EXPECT_EQ(within2s(200'000, 0), warning);
  EXPECT_EQ(within2s(500'000, 399'999), warning);
  EXPECT_EQ(within2s(500'000, 400'000), critical);
  EXPECT_EQ(stallThreshold(warning), milliseconds(200));
  EXPECT_EQ(stallThreshold(critical), milliseconds(400));
}

TEST(StallLevel, ThresholdsGrowWithTheTimeBetweenReadings) {
  EXPECT_EQ(stallLevel(totals(0, 0), totals(399'999, 0), seconds(4)), normal);
  EXPECT_EQ(stallLevel(totals(0, 0), totals(400'000, 0), seconds(4)), warning);
}

TEST(StallLevel, IsNormalWhenNoTimePassedOrTotalsWentBackwards) {
  EXPECT_EQ(stallLevel(totals(0, 0), totals(500'000, 500'000), seconds(0)), normal);
  EXPECT_EQ(stallLevel(totals(0, 0), totals(500'000, 500'000), seconds(-2)), normal);
  EXPECT_EQ(stallLevel(totals(9'000'000, 9'000'000), totals(5, 5), seconds(2)), normal);
}

TEST(StallLevel, UsesAveragesForASingleReading) {
  EXPECT_EQ(stallLevel(averages(9.99, 0)), normal);
  EXPECT_EQ(stallLevel(averages(10, 0)), warning);
  EXPECT_EQ(stallLevel(averages(30, 19.99)), warning);
  EXPECT_EQ(stallLevel(averages(30, 20)), critical);
}

struct LevelRow {
  MemoryPressure stalls;
  std::uint64_t availablePercent;
  std::uint64_t freeSwapPercent;
  MemoryPressure expected;
};

class PressureLevelRows : public testing::TestWithParam<LevelRow> {};

TEST_P(PressureLevelRows, FollowFromStallsAvailableMemoryAndFreeSwap) {
  const LevelRow& row = GetParam();
  EXPECT_EQ(pressureLevel(row.stalls, memoryInfo(row.availablePercent, 100, row.freeSwapPercent, 100)),
            row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, PressureLevelRows,
    testing::Values(LevelRow{critical, 19, 100, critical}, LevelRow{critical, 20, 100, warning},
                    LevelRow{critical, 49, 100, warning}, LevelRow{critical, 50, 100, normal},
                    LevelRow{critical, 30, 100, warning}, LevelRow{warning, 19, 100, warning},
                    LevelRow{warning, 49, 100, warning}, LevelRow{warning, 50, 100, normal},
                    LevelRow{normal, 10, 100, normal}, LevelRow{normal, 9, 100, warning},
                    LevelRow{normal, 4, 100, warning}, LevelRow{normal, 4, 10, warning},
                    LevelRow{normal, 4, 9, critical}, LevelRow{normal, 4, 0, critical},
                    LevelRow{normal, 5, 0, warning}, LevelRow{normal, 90, 0, normal}));

TEST(PressureLevel, ComparesSharesOfTheTotals) {
  EXPECT_EQ(pressureLevel(critical, memoryInfo(199, 1000, 400, 400)), critical);
  EXPECT_EQ(pressureLevel(critical, memoryInfo(250, 1000, 100, 400)), warning);
  EXPECT_EQ(pressureLevel(normal, memoryInfo(99, 1000, 100, 400)), warning);
  EXPECT_EQ(pressureLevel(normal, memoryInfo(49, 1000, 40, 400)), warning);
  EXPECT_EQ(pressureLevel(normal, memoryInfo(49, 1000, 39, 400)), critical);
  EXPECT_EQ(pressureLevel(critical, memoryInfo(2000, 1000)), normal) << "more available than the total";
}

TEST(PressureLevel, CountsNoSwapAsNoFreeSwap) {
  EXPECT_EQ(pressureLevel(normal, memoryInfo(40, 1000, 0, 0)), critical);
  MemoryInfo info = memoryInfo(40, 1000);
  info.swapTotal.reset();
  info.swapFree.reset();
  EXPECT_EQ(pressureLevel(normal, info), critical);
}

TEST(PressureLevel, IsUnknownWithoutTotalOrAvailableMemory) {
  MemoryInfo info;
  info.available = 5;
  EXPECT_FALSE(pressureLevel(normal, info));
  info.total = 0;
  EXPECT_FALSE(pressureLevel(normal, info));
  info.total = 10;
  info.available.reset();
  EXPECT_FALSE(pressureLevel(normal, info));
}

TEST(PressureLevel, UsesAveragesAndAvailableMemoryForASingleReading) {
  EXPECT_EQ(pressureLevel(averages(30, 20), memoryInfo(10, 100, 1, 1)), critical);
  EXPECT_EQ(pressureLevel(averages(30, 19), memoryInfo(10, 100, 1, 1)), warning);
  EXPECT_EQ(pressureLevel(averages(9, 0), memoryInfo(40, 100, 1, 1)), normal);
  EXPECT_EQ(pressureLevel(std::nullopt, memoryInfo(4, 100)), critical);
  EXPECT_EQ(pressureLevel(averages(100, 100), MemoryInfo{}), std::nullopt);
}

/// Time since the start, the current level, avg10 of the "some" line, and the level to report.
struct Step {
  milliseconds time;
  MemoryPressure current;
  double average;
  MemoryPressure expected;
};

void follow(MemoryPressure start, const std::vector<Step>& steps) {
  const PressureHysteresis::TimePoint begin{};
  PressureHysteresis level(start, begin);
  for (const Step& step : steps) {
    EXPECT_EQ(level.update(step.current, step.average, begin + step.time), step.expected)
        << "after " << step.time.count() << " ms";
    EXPECT_EQ(level.level(), step.expected);
  }
}

TEST(PressureHysteresis, RisesImmediately) {
  follow(normal, {{seconds(1), warning, 0, warning}, {seconds(1), critical, 0, critical}});
  follow(normal, {{seconds(1), critical, 0, critical}});
}

TEST(PressureHysteresis, FallsAfter15QuietSeconds) {
  follow(normal, {{seconds(10), warning, 0, warning},
                  {milliseconds(24'999), normal, 0, warning},
                  {seconds(25), normal, 0, normal}});
  follow(normal, {{seconds(10), critical, 0, critical},
                  {milliseconds(24'999), normal, 0, critical},
                  {seconds(25), normal, 0, normal}});
}

TEST(PressureHysteresis, RestartsTheQuietTimeWhenTheLevelReturns) {
  follow(normal, {{seconds(0), warning, 0, warning},
                  {seconds(10), warning, 0, warning},
                  {seconds(15), normal, 0, warning},
                  {seconds(24), normal, 0, warning},
                  {seconds(25), normal, 0, normal}});
}

TEST(PressureHysteresis, DoesNotFallWhileTheAverageIs5PercentOrMore) {
  follow(normal, {{seconds(0), warning, 0, warning},
                  {seconds(60), normal, 5, warning},
                  {seconds(62), normal, 4.99, normal}});
}

TEST(PressureHysteresis, FallsFromCriticalToWarningWhileTheCurrentLevelIsWarning) {
  follow(normal, {{seconds(0), critical, 0, critical},
                  {seconds(10), warning, 0, critical},
                  {seconds(15), warning, 0, warning},
                  {seconds(29), normal, 0, warning},
                  {seconds(30), normal, 0, normal}});
}

TEST(PressureHysteresis, FallsFromCriticalToWarningAfterARecentWarning) {
  follow(normal, {{seconds(0), critical, 0, critical},
                  {seconds(10), warning, 0, critical},
                  {seconds(16), normal, 0, warning},
                  {seconds(25), normal, 0, normal}});
}

TEST(PressureHysteresis, TreatsTheLevelAtTheStartLikeAnyOther) {
  follow(critical, {{milliseconds(14'999), normal, 0, critical}, {seconds(15), normal, 0, normal}});
}

}  // namespace
}  // namespace tarn
