// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "extras/ports.hpp"
#include "platform/linux/sysfs/device_directory.hpp"

namespace tarn {

/// The machine's batteries in /sys/class/power_supply, reported as one battery. Batteries of peripheral
/// devices and batteries that are not inserted are left out.
///
/// Attributes, one file each (Documentation/ABI/testing/sysfs-class-power, units from
/// Documentation/power/power_supply_class.rst). A driver may omit any of them.
///
///     type                "Battery", "UPS", "Mains", "USB", "Wireless"
///     scope               "System": powers the machine; "Device": powers a peripheral device;
///                         "Unknown". Absent for most batteries of a machine.
///     present             0: not inserted; 1: inserted
///     status              "Unknown", "Charging", "Discharging", "Not charging", "Full"
///     energy_now          charge, microwatt-hours
///     energy_full         full-charge capacity, microwatt-hours
///     energy_full_design  full-charge capacity of a new battery, microwatt-hours
///     charge_*            like energy_*, in microampere-hours
///     capacity            charge, percent
///     cycle_count         number of charge cycles; 0 or negative when the firmware does not count them
class PowerSupplies {
 public:
  explicit PowerSupplies(const std::string& sys) : supplies_(sys + "/class/power_supply") {}
  PowerSupplies(const PowerSupplies&) = delete;
  PowerSupplies& operator=(const PowerSupplies&) = delete;

  /// One internal battery, or none. Its capacities are sums over the batteries in one unit: the first of
  /// energy, charge and percent that any battery reports. Batteries without this unit are left out of the
  /// sums. It is charging when any battery is charging.
  std::vector<std::optional<PropertyDictionary>> sources();

  /// The largest cycle count, and the sums of the full-charge and design capacities, of the batteries that
  /// the last call of `sources` found.
  std::optional<PropertyDictionary> controller() const;

 private:
  DeviceClass supplies_;
  std::vector<DeviceDirectory> batteries_;       ///< updated when a supply is added or removed
  std::vector<const DeviceDirectory*> present_;  ///< inserted batteries at the last call of `sources`
};

}  // namespace tarn
