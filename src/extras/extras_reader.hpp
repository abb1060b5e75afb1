// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "extras/battery.hpp"
#include "extras/ports.hpp"
#include "extras/thermal.hpp"

namespace tarn {

/// Capacity of the startup volume.
struct StorageInfo {
  std::string volumeName;
  std::uint64_t total = 0;      ///< bytes
  std::uint64_t available = 0;  ///< bytes that the user can still store

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

/// Reads storage, battery, temperature and uptime. Not thread-safe: used only on the sampler's queue. Caches
/// nothing between readings.
class ExtrasReader {
 public:
  explicit ExtrasReader(ExtrasPort port);

  /// Reads everything once. Values that cannot be read are absent. Throws std::bad_alloc when memory runs
  /// out; the next reading is correct again.
  SystemExtras read() const;

  ThermalState thermalState() const;

  /// The startup volume. Returns nullopt when it cannot be queried or one of its capacities is absent.
  static std::optional<StorageInfo> storage(const ExtrasPort& port);

 private:
  ExtrasPort port_;
  ThermalSensors thermal_;
};

}  // namespace tarn
