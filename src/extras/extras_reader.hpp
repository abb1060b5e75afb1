// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>

#include "extras/ports.hpp"
#include "extras/system_extras.hpp"
#include "extras/thermal_sensors.hpp"

namespace tarn {

/// Gathers what there is to know about the machine besides memory and processor. Used on the sampler's queue
/// only; keeps nothing between two gatherings.
class ExtrasReader {
 public:
  explicit ExtrasReader(ExtrasPort port);

  /// One full gathering: what cannot be read is absent. Without the memory for it there is none, and
  /// std::bad_alloc is thrown; the next one is as right as any.
  SystemExtras read() const;

  /// The platform's own thermal state.
  ThermalState thermalState() const;

  /// The start-up volume; nothing when it cannot be asked or does not tell both capacities.
  static std::optional<StorageInfo> storage(const ExtrasPort& port);

 private:
  ExtrasPort port_;
  ThermalSensors thermal_;
};

}  // namespace tarn
