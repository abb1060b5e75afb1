// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The contract between ExtrasReader and a platform. A platform folder implements these functions. Mapping to
// records, bounds, means and default values are shared code in ExtrasReader.
//
// Thread: all calls come from the sampler's serial queue, one at a time.
// Order of calls in one reading: rootVolume; powerSources; batteryController (only when a source is an
// internal battery); temperatures; uptime; thermalState. Values are not cached between readings. Values that
// cannot be read are absent. No function throws, except std::bad_alloc. A call may block until a driver
// answers, which delays the sweep.

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

/// Properties of the startup volume. Each may be absent.
struct VolumeValues {
  std::optional<std::int64_t> totalCapacity;  ///< bytes
  /// Bytes that the user can still store. Linux: f_bavail of statvfs. macOS:
  /// NSURLVolumeAvailableCapacityForImportantUsageKey.
  std::optional<std::int64_t> availableCapacityForImportantUsage;
  std::optional<std::string> name;
};

/// A value in a property dictionary. std::monostate stands for any type that no reader uses.
using PropertyValue = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

using PropertyDictionary = std::map<std::string, PropertyValue, std::less<>>;

/// The machine's power supply.
struct PowerPort {
  /// The description of each power source, in the system's order; nullopt for a source without description.
  /// Keys: "Type" ("InternalBattery" for the machine's own battery), "Current Capacity" and "Max Capacity" in
  /// the same unit, "Is Charging". Empty when the sources cannot be listed.
  std::function<std::vector<std::optional<PropertyDictionary>>()> powerSources;

  /// Properties of the battery controller: "CycleCount", "DesignCapacity" and a full-charge capacity in the
  /// same unit. nullopt when there is no controller or it cannot be read.
  std::function<std::optional<PropertyDictionary>()> batteryController;
};

/// The functions of the platform that ExtrasReader calls. Owned by the reader. All functions are set.
struct ExtrasPort {
  std::function<std::optional<VolumeValues>()> rootVolume;  ///< nullopt when the volume cannot be queried
  PowerPort power;
  SensorReadings temperatures;
  std::function<double()> uptime;  ///< seconds since boot, without the time in system sleep
  std::function<ThermalState()> thermalState;
};

}  // namespace tarn
