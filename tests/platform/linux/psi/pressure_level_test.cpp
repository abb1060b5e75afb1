// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/psi/pressure_level.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <vector>

namespace tarn {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using enum MemoryPressure;

constexpr StallVerdict noStall{};
constexpr StallVerdict someStall{.some = true};
constexpr StallVerdict fullStall{.some = true, .full = true};

MemoryStalls totals(std::uint64_t some, std::uint64_t full) {
  return {{0, some}, {0, full}};
}

MemoryStalls averages(double some, double full) {
  return {{some, 0}, {full, 0}};
}

TEST(Stalls, ThresholdsAre200And400MillisecondsOfTwoSeconds) {
  const auto within2s = [](std::uint64_t some, std::uint64_t full) {
    return stallsBetween(totals(1000, 1000), totals(1000 + some, 1000 + full), seconds(2));
  };
  EXPECT_FALSE(within2s(199'999, 0).some);
  EXPECT_TRUE(within2s(200'000, 0).some);
  EXPECT_FALSE(within2s(500'000, 399'999).full);
  EXPECT_TRUE(within2s(500'000, 400'000).full);
}

TEST(Stalls, ALongerWindowNeedsMore) {
  EXPECT_FALSE(stallsBetween(totals(0, 0), totals(399'999, 0), seconds(4)).some);
  EXPECT_TRUE(stallsBetween(totals(0, 0), totals(400'000, 0), seconds(4)).some);
}

TEST(Stalls, NoTimeAndCountersThatRunBackwardsAreNoStall) {
  EXPECT_FALSE(stallsBetween(totals(0, 0), totals(500'000, 500'000), seconds(0)).some);
  EXPECT_FALSE(stallsBetween(totals(0, 0), totals(500'000, 500'000), seconds(-2)).full);
  EXPECT_FALSE(stallsBetween(totals(9'000'000, 9'000'000), totals(5, 5), seconds(2)).full);
}

TEST(Stalls, AveragesServeASingleLook) {
  EXPECT_FALSE(stallsByAverage(averages(9.99, 0)).some);
  EXPECT_TRUE(stallsByAverage(averages(10, 0)).some);
  EXPECT_FALSE(stallsByAverage(averages(30, 19.99)).full);
  EXPECT_TRUE(stallsByAverage(averages(30, 20)).full);
}

struct PressureRow {
  StallVerdict stalls;
  double available;
  double freeSwap;
  MemoryPressure expected;
};

class PressureRows : public testing::TestWithParam<PressureRow> {};

TEST_P(PressureRows, HaveTheirLevel) {
  const PressureRow& row = GetParam();
  EXPECT_EQ(pressureOf(row.stalls, {row.available, row.freeSwap}), row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, PressureRows,
    testing::Values(PressureRow{fullStall, 0.19, 1, critical}, PressureRow{fullStall, 0.2, 1, warning},
                    PressureRow{fullStall, 0.49, 1, warning}, PressureRow{fullStall, 0.5, 1, normal},
                    PressureRow{{.full = true}, 0.3, 1, warning}, PressureRow{someStall, 0.19, 1, warning},
                    PressureRow{someStall, 0.49, 1, warning}, PressureRow{someStall, 0.5, 1, normal},
                    PressureRow{noStall, 0.1, 1, normal}, PressureRow{noStall, 0.09, 1, warning},
                    PressureRow{noStall, 0.04, 1, warning}, PressureRow{noStall, 0.04, 0.1, warning},
                    PressureRow{noStall, 0.04, 0.09, critical}, PressureRow{noStall, 0.04, 0, critical},
                    PressureRow{noStall, 0.05, 0, warning}, PressureRow{noStall, 0.9, 0, normal}));

TEST(Availability, IsAShareOfTheTotal) {
  MemoryInfo info;
  info.total = 1000;
  info.available = 250;
  info.swapTotal = 400;
  info.swapFree = 100;
  const auto availability = memoryAvailability(info);
  ASSERT_TRUE(availability);
  EXPECT_DOUBLE_EQ(availability->availableShare, 0.25);
  EXPECT_DOUBLE_EQ(availability->freeSwapShare, 0.25);
}

TEST(Availability, NoSwapCountsAsNoFreeSwap) {
  MemoryInfo info;
  info.total = 1000;
  info.available = 40;
  EXPECT_DOUBLE_EQ(memoryAvailability(info)->freeSwapShare, 0);
  info.swapTotal = 0;
  info.swapFree = 0;
  EXPECT_DOUBLE_EQ(memoryAvailability(info)->freeSwapShare, 0);
}

TEST(Availability, IsUnknownWithoutItsFields) {
  MemoryInfo info;
  info.available = 5;
  EXPECT_FALSE(memoryAvailability(info));
  info.total = 0;
  EXPECT_FALSE(memoryAvailability(info));
  info.total = 10;
  info.available.reset();
  EXPECT_FALSE(memoryAvailability(info));
}

TEST(PressureAtOnce, UsesAveragesAndAvailability) {
  EXPECT_EQ(pressureAtOnce(averages(30, 20), MemoryAvailability{0.1, 1}), critical);
  EXPECT_EQ(pressureAtOnce(averages(30, 19), MemoryAvailability{0.1, 1}), warning);
  EXPECT_EQ(pressureAtOnce(averages(9, 0), MemoryAvailability{0.4, 1}), normal);
  EXPECT_EQ(pressureAtOnce(std::nullopt, MemoryAvailability{0.04, 0}), critical);
  EXPECT_EQ(pressureAtOnce(averages(100, 100), std::nullopt), std::nullopt);
}

/// Seconds since the start, what a look found, the average, and the level that is to be shown.
struct Step {
  milliseconds time;
  MemoryPressure found;
  double average;
  MemoryPressure expected;
};

void follow(MemoryPressure start, const std::vector<Step>& steps) {
  const PressureHysteresis::TimePoint begin{};
  PressureHysteresis level(start, begin);
  for (const Step& step : steps) {
    EXPECT_EQ(level.update(step.found, step.average, begin + step.time), step.expected)
        << "after " << step.time.count() << " ms";
    EXPECT_EQ(level.level(), step.expected);
  }
}

TEST(PressureHysteresis, RisesAtOnce) {
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

TEST(PressureHysteresis, EveryBadLookStartsTheQuietTimeAnew) {
  follow(normal, {{seconds(0), warning, 0, warning},
                  {seconds(10), warning, 0, warning},
                  {seconds(15), normal, 0, warning},
                  {seconds(24), normal, 0, warning},
                  {seconds(25), normal, 0, normal}});
}

TEST(PressureHysteresis, DoesNotFallBeforeTheMachineIsCalm) {
  follow(normal, {{seconds(0), warning, 0, warning},
                  {seconds(60), normal, 5, warning},
                  {seconds(62), normal, 4.99, normal}});
}

TEST(PressureHysteresis, FallsFromCriticalToWarningWhileThingsStayBad) {
  follow(normal, {{seconds(0), critical, 0, critical},
                  {seconds(10), warning, 0, critical},
                  {seconds(15), warning, 0, warning},
                  {seconds(29), normal, 0, warning},
                  {seconds(30), normal, 0, normal}});
}

TEST(PressureHysteresis, FallsOnlyToWarningWhereAWarningWasRecent) {
  follow(normal, {{seconds(0), critical, 0, critical},
                  {seconds(10), warning, 0, critical},
                  {seconds(16), normal, 0, warning},
                  {seconds(25), normal, 0, normal}});
}

TEST(PressureHysteresis, ALevelAtTheStartFallsLikeAnyOther) {
  follow(critical, {{milliseconds(14'999), normal, 0, critical}, {seconds(15), normal, 0, normal}});
}

}  // namespace
}  // namespace tarn
