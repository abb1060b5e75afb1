// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

#include "platform/linux/sysfs/device_directory.hpp"
#include "platform/linux/sysfs/thermal_rules.hpp"

namespace tarn {

/// One thermal zone: a sensor, in its directory's file "temp", and what happens at which temperature.
struct ThermalZone {
  DeviceDirectory directory;
  std::string type;  ///< what it measures, such as "cpu-thermal"
  TripPoints trips;
};

/// The kernel's thermal zones, from /sys/class/thermal. Types and trip points are read when a zone comes.
class ThermalZones {
 public:
  explicit ThermalZones(const std::string& sys) : zones_(sys + "/class/thermal") {}

  /// Looks whether zones came or went. Once per gathering, before the other calls.
  void refresh();

  const std::vector<ThermalZone>& all() const { return known_; }

  /// The gravest state of all zones that have trip points and a plausible temperature.
  ThermalState state() const;

 private:
  DeviceClass zones_;
  std::vector<ThermalZone> known_;
};

}  // namespace tarn
