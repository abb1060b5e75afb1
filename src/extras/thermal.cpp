// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "extras/thermal.hpp"

#include <utility>

namespace tarn {

ThermalState thermalStateFromRawValue(std::int64_t rawValue) {
  if (rawValue < 0 || rawValue > static_cast<int>(ThermalState::critical)) return ThermalState::unknown;
  return static_cast<ThermalState>(rawValue);
}

std::string thermalPhrase(ThermalState state) {
  switch (state) {
    case ThermalState::nominal:
      return "Running cool";
    case ThermalState::fair:
      return "Warming up";
    case ThermalState::serious:
      return "Running hot";
    case ThermalState::critical:
      return "Overheating";
    case ThermalState::unknown:
      break;
  }
  return "Temperature unknown";
}

bool isPlausibleTemperature(double celsius) {
  constexpr double lowerBound = 1.0;
  constexpr double upperBound = 120.0;
  return celsius > lowerBound && celsius < upperBound;
}

ThermalSensors::ThermalSensors(SensorReadings readings) : readings_(std::move(readings)) {}

std::optional<double> ThermalSensors::averageCelsius() const {
  double sum = 0;
  int count = 0;
  for (const double celsius : readings_()) {
    if (!isPlausibleTemperature(celsius)) continue;
    sum += celsius;
    ++count;
  }
  if (count == 0) return std::nullopt;
  return sum / count;
}

}  // namespace tarn
