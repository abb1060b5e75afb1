// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "extras/thermal.hpp"

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

}  // namespace tarn
