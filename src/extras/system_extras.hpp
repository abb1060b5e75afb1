// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "extras/battery.hpp"

namespace tarn {

/// The start-up volume.
struct StorageInfo {
  std::string volumeName;
  std::uint64_t total = 0;      ///< bytes
  std::uint64_t available = 0;  ///< bytes available for important use

  bool operator==(const StorageInfo&) const = default;
};

/// The machine's health in one reading; what could not be read is absent.
struct SystemExtras {
  std::optional<StorageInfo> storage;
  std::optional<BatteryInfo> battery;
  std::optional<double> temperatureCelsius;  ///< mean of the accepted sensors
  double uptime = 0;                         ///< seconds since the system started

  bool operator==(const SystemExtras&) const = default;
};

}  // namespace tarn
