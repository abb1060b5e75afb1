// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "extras/ports.hpp"

namespace tarn {

/// Values that a fake ExtrasPort returns. Owned by the test; must outlive the port.
struct FakeExtras {
  std::optional<VolumeValues> volume;
  std::vector<std::optional<PropertyDictionary>> powerSources;
  std::optional<PropertyDictionary> batteryController;
  std::vector<double> temperatures;  ///< degrees Celsius
  double uptime = 0;                 ///< seconds
  ThermalState thermalState = ThermalState::unknown;
  std::function<void(const std::string& operation)> onCall = [](const std::string&) {};

  ExtrasPort port() {
    return {.rootVolume = returning("rootVolume", volume),
            .power = {.powerSources = returning("powerSources", powerSources),
                      .batteryController = returning("batteryController", batteryController)},
            .temperatures = returning("temperatures", temperatures),
            .uptime = returning("uptime", uptime),
            .thermalState = returning("thermalState", thermalState)};
  }

 private:
  template <typename Value>
  std::function<Value()> returning(const std::string& operation, const Value& value) {
    return [this, operation, &value] {
      onCall(operation);
      return value;
    };
  }
};

/// The description of an internal battery in PowerPort::powerSources.
inline PropertyDictionary internalBattery(std::int64_t current, std::int64_t max) {
  return {{"Type", std::string("InternalBattery")}, {"Current Capacity", current}, {"Max Capacity", max}};
}

}  // namespace tarn
