// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/thermal_rules.hpp"

namespace tarn {

bool isPlausibleZone(double celsius) {
  constexpr double tooLow = 1;
  constexpr double tooHigh = 150;
  return celsius > tooLow && celsius < tooHigh;
}

bool isPlausibleTrip(double celsius) {
  // Unset ones read as 0, -274 or 255; some firmware has 20.8 or 256 for good measure.
  constexpr double tooLow = 30;
  constexpr double tooHigh = 130;
  return celsius > tooLow && celsius < tooHigh;
}

ThermalState stateOf(double celsius, const TripPoints& trips) {
  constexpr double marginBeforeCritical = 5;
  constexpr double marginBeforePassive = 10;
  if (trips.critical && celsius >= *trips.critical - marginBeforeCritical) return ThermalState::critical;
  if (trips.passive && celsius >= *trips.passive) return ThermalState::serious;
  if (trips.passive && celsius >= *trips.passive - marginBeforePassive) return ThermalState::fair;
  return trips.critical || trips.passive ? ThermalState::nominal : ThermalState::unknown;
}

ThermalState graver(ThermalState one, ThermalState other) {
  return static_cast<int>(one) > static_cast<int>(other) ? one : other;
}

}  // namespace tarn
