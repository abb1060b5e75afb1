// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "extras/battery.hpp"

namespace tarn {

/// Capacity of the startup volume.
struct StorageInfo {
  std::string volumeName;
  std::uint64_t total = 0;      ///< bytes
  std::uint64_t available = 0;  ///< bytes available for important use

  bool operator==(const StorageInfo&) const = default;
};

/// The result of one reading by ExtrasReader. Values that could not be read are absent.
struct SystemExtras {
  std::optional<StorageInfo> storage;
  std::optional<BatteryInfo> battery;
  std::optional<double> temperatureCelsius;  ///< mean of the plausible sensor readings
  double uptime = 0;                         ///< seconds since boot

  bool operator==(const SystemExtras&) const = default;
};

}  // namespace tarn
