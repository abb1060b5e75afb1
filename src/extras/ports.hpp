// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the extras reader needs from the operating system. A port implements these operations in its platform
// folder; the mapping to records, bounds, means and fallbacks are shared code above them.
//
// All calls come from the sampler's serial queue, one at a time, in this order per gathering: rootVolume,
// powerSources, batteryController (only when a source is an internal battery), temperatures, uptime,
// thermalState. Each asks the system afresh. None throws; what cannot be read is absent. A call may take as
// long as a driver takes to answer, which delays that one sweep.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "extras/thermal.hpp"

namespace tarn {

/// What the start-up volume says of itself; each value may be missing.
struct VolumeValues {
  std::optional<std::int64_t> totalCapacity;                       ///< bytes
  std::optional<std::int64_t> availableCapacityForImportantUsage;  ///< bytes
  std::optional<std::string> name;
};

/// A value of a property dictionary; std::monostate stands for one of a type that nobody here reads.
using PropertyValue = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

/// Properties by key.
using PropertyDictionary = std::map<std::string, PropertyValue, std::less<>>;

/// The machine's power supply.
struct PowerPort {
  /// The description of each power source, in the system's order; nothing for a source that has none. Keys:
  /// "Type" ("InternalBattery" for the machine's own), "Current Capacity", "Max Capacity" in any one unit,
  /// "Is Charging". Empty when the sources cannot be listed.
  std::function<std::vector<std::optional<PropertyDictionary>>()> powerSources;

  /// Properties of the battery's controller: "CycleCount", "DesignCapacity" and a full-charge capacity in the
  /// same unit. Nothing when there is no controller, or none that can be read.
  std::function<std::optional<PropertyDictionary>()> batteryController;
};

/// The present reading of each sensor that gives one, degrees Celsius, implausible ones included.
using SensorReadings = std::function<std::vector<double>()>;

/// The operating system as the extras reader sees it: every operation is set. Owned by the reader.
struct ExtrasPort {
  /// Nothing when the start-up volume cannot be asked.
  std::function<std::optional<VolumeValues>()> rootVolume;
  PowerPort power;
  SensorReadings temperatures;
  std::function<double()> uptime;  ///< seconds since the system started, without the time it slept
  std::function<ThermalState()> thermalState;
};

}  // namespace tarn
