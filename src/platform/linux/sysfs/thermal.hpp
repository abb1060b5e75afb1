// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Thermal zones, the processor's temperature sensors and throttle counters, and the rules that derive the
// thermal state from them.

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
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

/// A thermal zone: a temperature and the trip points at which the kernel acts.
struct ThermalZone {
  DeviceDirectory directory;
  std::string type;  ///< what the zone measures, such as "cpu-thermal"
  TripPoints trips;
};

/// The thermal zones in /sys/class/thermal. Types and trip points are read when a zone is added, temperatures
/// at every call. Not thread-safe.
///
/// Attributes, one file each (Documentation/driver-api/thermal/sysfs-api.rst and
/// Documentation/ABI/testing/sysfs-class-thermal):
///
///     type               what the zone measures, chosen by its driver
///     temp               temperature, millidegrees Celsius
///     trip_point_N_temp  trip point, millidegrees Celsius
///     trip_point_N_type  "critical" (shutdown), "hot" (hibernation), "passive" (slowdown) or "active" (fan)
///
/// The class contains cooling devices, too. They have no file "temp".
class ThermalZones {
 public:
  explicit ThermalZones(const std::string& sys) : zones_(sys + "/class/thermal") {}

  /// Checks whether zones were added or removed. To be called once per reading, before the other functions.
  void refresh();

  const std::vector<ThermalZone>& all() const { return known_; }

  /// The highest severity over the zones that have trip points and a plausible temperature. `unknown` without
  /// such a zone.
  ThermalState state() const;

 private:
  DeviceClass zones_;
  std::vector<ThermalZone> known_;
};

/// Whether a hwmon chip or a thermal zone of this name measures the processor. Chips of the mainboard are
/// excluded because their unconnected inputs report arbitrary values.
bool isProcessorSensor(std::string_view name);

/// The processor's temperature sensors: its hwmon chips; if these have no readings, its thermal zones; if
/// there are none, the ACPI thermal zone "acpitz". Not thread-safe.
///
/// Attributes of /sys/class/hwmon/hwmonN, one file each (Documentation/hwmon/sysfs-interface.rst):
///
///     name         name of the chip's driver, such as "coretemp"
///     tempN_input  temperature, millidegrees Celsius
///     tempN_label  what the input measures, such as "Tctl"; optional
class ProcessorSensors {
 public:
  explicit ProcessorSensors(const std::string& sys) : chips_(sys + "/class/hwmon") {}

  /// The temperatures of all sensors that can be read, degrees Celsius. Call `zones.refresh()` first.
  std::vector<double> readings(const ThermalZones& zones);

 private:
  struct Chip {
    DeviceDirectory directory;
    std::vector<std::string> inputs;  ///< names of the tempN_input files to read
  };

  void findSensors();

  DeviceClass chips_;
  std::vector<Chip> sensors_;  ///< updated when a chip is added or removed
};

/// Counts of how often the processor slowed itself down because of its temperature. x86 only.
///
/// Files below /sys/devices/system/cpu/cpuN (drivers/thermal/intel/therm_throt.c and
/// Documentation/ABI/testing/sysfs-devices-system-cpu in the kernel source):
///
///     thermal_throttle/package_throttle_count  throttle events of the package, equal in all its processors
///     thermal_throttle/core_throttle_count     throttle events of the core
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
  /// Also true when a counter can no longer be read because its processor went offline.
  bool isSearchNeeded_ = true;
  Time previousCall_;
};

}  // namespace tarn
