// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>

#include "extras/ports.hpp"
#include "extras/system_extras.hpp"
#include "extras/thermal.hpp"

namespace tarn {

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
