// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/sysfs/device_directory.hpp"
#include "platform/linux/sysfs/thermal_state.hpp"

namespace tarn {

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

/// The processor's temperature sensors: its hwmon chips; without readings from these, the thermal zones of
/// the processor; without these, the ACPI thermal zone "acpitz". Not thread-safe.
///
/// Attributes of /sys/class/hwmon/hwmonN, one file each (Documentation/hwmon/sysfs-interface.rst):
///
///     name         name of the chip's driver, such as "coretemp"
///     tempN_input  temperature, millidegrees Celsius
///     tempN_label  what the input measures, such as "Tctl"; optional
class ProcessorSensors {
 public:
  explicit ProcessorSensors(const std::string& sys) : chips_(sys + "/class/hwmon") {}

  /// The temperatures of all sensors that can be read, degrees Celsius. The caller has refreshed `zones`.
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

}  // namespace tarn
