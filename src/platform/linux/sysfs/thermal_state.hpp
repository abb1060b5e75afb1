// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Rules for the thermal state of a machine, and the processor's throttle counters.

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "extras/thermal.hpp"
#include "platform/linux/sysfs/device_directory.hpp"

namespace tarn {

/// The temperatures, degrees Celsius, at which the kernel acts on a thermal zone. Trip points of type
/// "active", which only start a fan, are ignored.
struct TripPoints {
  std::optional<double> passive;   ///< lowest "passive" one: the kernel slows the processor down
  std::optional<double> critical;  ///< lowest "critical" (shutdown) or "hot" (hibernation) one

  bool operator==(const TripPoints&) const = default;
};

/// Whether a zone's temperature in degrees Celsius is between 1 and 150, both excluded. The range is wider
/// than that of `isPlausibleTemperature` because a zone may be close to a critical trip point above 120
/// degrees.
bool isPlausibleZone(double celsius);

/// Whether a trip point in degrees Celsius is between 30 and 130, both excluded. Firmware reports unset trip
/// points as 0, -274 or 255, and some firmware reports values such as 20.8 or 256.
bool isPlausibleTrip(double celsius);

/// The state of a zone with these trip points. `unknown` when it has none.
ThermalState stateOf(double celsius, const TripPoints& trips);

/// The state of higher severity. `unknown` is the lowest one.
ThermalState higherSeverity(ThermalState left, ThermalState right);

/// Counts of how often the processor slowed itself down because of its temperature. x86 only.
///
/// Files below /sys/devices/system/cpu/cpuN (drivers/thermal/intel/therm_throt.c and
/// Documentation/ABI/testing/sysfs-devices-system-cpu in the kernel source):
///
///     thermal_throttle/package_throttle_count  throttle events of the package, the same value in all its
///     processors thermal_throttle/core_throttle_count     throttle events of the core
///     topology/physical_package_id             number of the package that contains the processor
///
/// The package counters are used where the processor has them, else the core counters. Not thread-safe.
class ThrottleCounters {
 public:
  explicit ThrottleCounters(std::string sys) : sys_(std::move(sys)) {}

  using Time = std::chrono::steady_clock::time_point;

  /// Whether any counter increased since the previous call. False at the first call, and when the previous
  /// call was more than ten seconds before `now`, because the throttling may have ended long ago. Returns
  /// nullopt when no counter can be read.
  std::optional<bool> haveIncreased(Time now);

 private:
  struct Counter {
    DeviceDirectory directory;
    std::string file;
    std::optional<std::int64_t> previous;
  };

  void findCounters();

  std::string sys_;
  std::vector<Counter> counters_;
  bool isSearchNeeded_ =
      true;  ///< also when a counter can no longer be read because its processor went offline
  Time previousCall_;
};

}  // namespace tarn
