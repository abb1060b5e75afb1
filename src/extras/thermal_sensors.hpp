// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>

#include "extras/ports.hpp"

namespace tarn {

/// False for what a sensor says that is idle, absent or broken: at or below 1 degree Celsius, at or above
/// 120, or not a number.
bool isPlausibleTemperature(double celsius);

/// The machine's temperature, from as many sensors as it has. Used on one thread at a time.
class ThermalSensors {
 public:
  explicit ThermalSensors(SensorReadings readings);
  ThermalSensors(const ThermalSensors&) = delete;
  ThermalSensors& operator=(const ThermalSensors&) = delete;

  /// The unweighted mean of the plausible readings, degrees Celsius. Nothing when no sensor gives one.
  std::optional<double> averageCelsius() const;

 private:
  SensorReadings readings_;
};

}  // namespace tarn
