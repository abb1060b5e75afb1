// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "extras/ports.hpp"
#include "platform/linux/sysfs/device_directory.hpp"

namespace tarn {

/// The machine's own battery packs, from /sys/class/power_supply, taken together as one battery. Batteries of
/// mice and the like, and packs that are not in their bay, do not count.
class PowerSupplies {
 public:
  explicit PowerSupplies(const std::string& sys) : supplies_(sys + "/class/power_supply") {}
  PowerSupplies(const PowerSupplies&) = delete;
  PowerSupplies& operator=(const PowerSupplies&) = delete;

  /// One internal battery, or none. Capacities are summed in one unit, the first of energy, charge and
  /// percent that any pack tells; packs that do not tell it are left out. It charges if any pack does.
  std::vector<std::optional<PropertyDictionary>> sources();

  /// The largest cycle count, where one is known, and the summed capacities of the packs that `sources` met.
  std::optional<PropertyDictionary> controller() const;

 private:
  DeviceClass supplies_;
  std::vector<DeviceDirectory> packs_;           ///< as of the last change of the class
  std::vector<const DeviceDirectory*> present_;  ///< those that were in the machine at the last look
};

}  // namespace tarn
