// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <limits>

#include "extras/thermal_sensors.hpp"

namespace tarn {
namespace {

std::optional<double> averageOf(const std::vector<double>& readings) {
  return ThermalSensors([readings] { return readings; }).averageCelsius();
}

TEST(ThermalSensors, GiveTheUnweightedMeanOfAllSensors) {
  EXPECT_EQ(averageOf({40, 50, 75}), 55);
  EXPECT_EQ(averageOf({36.5}), 36.5);
}

TEST(ThermalSensors, IgnoreSensorsThatReportNothing) {
  EXPECT_EQ(averageOf({40, 50, 0}), 45);
  EXPECT_EQ(averageOf({0, 0, 61}), 61);
}

TEST(ThermalSensors, IgnoreReadingsOnAndBeyondTheBounds) {
  EXPECT_EQ(averageOf({1.0, 120.0, 50}), 50);
  EXPECT_DOUBLE_EQ(*averageOf({1.01, 119.9}), (1.01 + 119.9) / 2);
  EXPECT_EQ(averageOf({-62, 109, 127.5, 3000}), 109);
}

TEST(ThermalSensors, IgnoreWhatIsNotANumber) {
  EXPECT_EQ(averageOf({std::numeric_limits<double>::quiet_NaN(), 40}), 40);
  EXPECT_EQ(averageOf({std::numeric_limits<double>::infinity(), 40}), 40);
  EXPECT_EQ(averageOf({-std::numeric_limits<double>::infinity(), 40}), 40);
}

TEST(ThermalSensors, GiveNothingWithoutAPlausibleReading) {
  EXPECT_EQ(averageOf({}), std::nullopt);
  EXPECT_EQ(averageOf({0, 1, 120, -5, 200}), std::nullopt);
}

TEST(ThermalSensors, AskTheSensorsAtEachCall) {
  double reading = 30;
  const ThermalSensors sensors([&reading] { return std::vector{reading}; });
  EXPECT_EQ(sensors.averageCelsius(), 30);
  reading = 31;
  EXPECT_EQ(sensors.averageCelsius(), 31);
}

}  // namespace
}  // namespace tarn
