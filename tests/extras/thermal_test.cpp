// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "extras/thermal.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace tarn {
namespace {

std::optional<double> averageOf(const std::vector<double>& readings) {
  return ThermalSensors([readings] { return readings; }).averageCelsius();
}

TEST(ThermalSensors, ReturnsTheMeanOfAllReadings) {
  EXPECT_EQ(averageOf({40, 50, 75}), 55);
  EXPECT_EQ(averageOf({36.5}), 36.5);
}

TEST(ThermalSensors, IgnoresReadingsOfZero) {
  EXPECT_EQ(averageOf({40, 50, 0}), 45);
  EXPECT_EQ(averageOf({0, 0, 61}), 61);
}

TEST(ThermalSensors, IgnoresReadingsOnAndOutsideTheBounds) {
  EXPECT_EQ(averageOf({1.0, 120.0, 50}), 50);
  EXPECT_DOUBLE_EQ(*averageOf({1.01, 119.9}), (1.01 + 119.9) / 2);
  EXPECT_EQ(averageOf({-62, 109, 127.5, 3000}), 109);
}

TEST(ThermalSensors, IgnoresNaNAndInfinity) {
  EXPECT_EQ(averageOf({std::numeric_limits<double>::quiet_NaN(), 40}), 40);
  EXPECT_EQ(averageOf({std::numeric_limits<double>::infinity(), 40}), 40);
  EXPECT_EQ(averageOf({-std::numeric_limits<double>::infinity(), 40}), 40);
}

TEST(ThermalSensors, ReturnsNulloptWithoutPlausibleReading) {
  EXPECT_EQ(averageOf({}), std::nullopt);
  EXPECT_EQ(averageOf({0, 1, 120, -5, 200}), std::nullopt);
}

TEST(ThermalSensors, ReadsTheSensorsAtEachCall) {
  double reading = 30;
  const ThermalSensors sensors([&reading] { return std::vector{reading}; });
  EXPECT_EQ(sensors.averageCelsius(), 30);
  reading = 31;
  EXPECT_EQ(sensors.averageCelsius(), 31);
}

TEST(ThermalState, ComesFromItsRawValue) {
  EXPECT_EQ(thermalStateFromRawValue(0), ThermalState::nominal);
  EXPECT_EQ(thermalStateFromRawValue(1), ThermalState::fair);
  EXPECT_EQ(thermalStateFromRawValue(2), ThermalState::serious);
  EXPECT_EQ(thermalStateFromRawValue(3), ThermalState::critical);
  for (const std::int64_t other :
       {std::int64_t{-1}, std::int64_t{4}, std::int64_t{7}, std::int64_t{1} << 32}) {
    EXPECT_EQ(thermalStateFromRawValue(other), ThermalState::unknown) << other;
  }
}

TEST(ThermalPhrase, DescribesEachState) {
  EXPECT_EQ(thermalPhrase(ThermalState::nominal), "Running cool");
  EXPECT_EQ(thermalPhrase(ThermalState::fair), "Warming up");
  EXPECT_EQ(thermalPhrase(ThermalState::serious), "Running hot");
  EXPECT_EQ(thermalPhrase(ThermalState::critical), "Overheating");
  EXPECT_EQ(thermalPhrase(ThermalState::unknown), "Temperature unknown");
}

TEST(ThermalPhrase, IsUnknownForAnyOtherValue) {
  for (const int value : {-2, 4, 5, 1000}) {
    EXPECT_EQ(thermalPhrase(static_cast<ThermalState>(value)), "Temperature unknown") << value;
  }
}

}  // namespace
}  // namespace tarn
