// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "extras/ports.hpp"

namespace tarn {

/// A scripted machine's health. It belongs to the test and outlives the port over it.
struct FakeExtras {
  std::optional<VolumeValues> volume;
  std::vector<std::optional<PropertyDictionary>> powerSources;
  std::optional<PropertyDictionary> batteryController;
  std::vector<double> temperatures;  ///< degrees Celsius
  double uptime = 0;                 ///< seconds
  ThermalState thermalState = ThermalState::unknown;
  std::function<void(const std::string& operation)> onCall = [](const std::string&) {};

  ExtrasPort port() {
    return {.rootVolume = answering("rootVolume", volume),
            .power = {.powerSources = answering("powerSources", powerSources),
                      .batteryController = answering("batteryController", batteryController)},
            .temperatures = answering("temperatures", temperatures),
            .uptime = answering("uptime", uptime),
            .thermalState = answering("thermalState", thermalState)};
  }

 private:
  template <typename Answer>
  std::function<Answer()> answering(const std::string& operation, const Answer& answer) {
    return [this, operation, &answer] {
      onCall(operation);
      return answer;
    };
  }
};

/// A power source as a port describes the machine's own battery.
inline PropertyDictionary internalBattery(std::int64_t current, std::int64_t max) {
  return {{"Type", std::string("InternalBattery")}, {"Current Capacity", current}, {"Max Capacity", max}};
}

}  // namespace tarn
