// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarn {

/// The platform's thermal state, in ascending severity.
enum class ThermalState { unknown = -1, nominal = 0, fair = 1, serious = 2, critical = 3 };

/// The state with this raw value. Any value that is not in the enumeration gives `unknown`.
ThermalState thermalStateFromRawValue(std::int64_t rawValue);

/// The text that the user sees, such as "Running cool".
std::string thermalPhrase(ThermalState state);

/// Whether a reading in degrees Celsius is between 1 and 120, both excluded. Idle, unconnected and broken
/// sensors report values outside of this range. NaN is not plausible.
bool isPlausibleTemperature(double celsius);

/// Returns the current readings of all sensors that can be read, degrees Celsius, also implausible ones.
using SensorReadings = std::function<std::vector<double>()>;

/// Computes one temperature from all sensors of the machine. Not thread-safe.
class ThermalSensors {
 public:
  explicit ThermalSensors(SensorReadings readings);
  ThermalSensors(const ThermalSensors&) = delete;
  ThermalSensors& operator=(const ThermalSensors&) = delete;

  /// Reads all sensors and returns the unweighted mean of the plausible readings, degrees Celsius. Returns
  /// nullopt when no reading is plausible.
  std::optional<double> averageCelsius() const;

 private:
  SensorReadings readings_;
};

}  // namespace tarn
