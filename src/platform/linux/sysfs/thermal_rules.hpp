// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// When a machine counts as warm, hot or overheating, as pure functions.

#pragma once

#include <optional>

#include "extras/thermal.hpp"

namespace tarn {

/// The temperatures, degrees Celsius, at which the kernel acts on a thermal zone. Those at which only a fan
/// starts do not count.
struct TripPoints {
  std::optional<double> passive;   ///< the processor is slowed down
  std::optional<double> critical;  ///< the machine is about to be put to sleep or switched off

  bool operator==(const TripPoints&) const = default;
};

/// False for a temperature that no zone of a running machine has. Wider than what the sensors' mean accepts:
/// a zone may be hotter than that on its way to its critical trip point.
bool isPlausibleZone(double celsius);

/// False for a trip point that firmware left unset or set to nonsense.
bool isPlausibleTrip(double celsius);

/// The state of a zone with these trip points; unknown when it has none.
ThermalState stateOf(double celsius, const TripPoints& trips);

/// The graver of two states; unknown yields to any other.
ThermalState graver(ThermalState one, ThermalState other);

}  // namespace tarn
