// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>

namespace tarn {

struct PowerPort;

/// State of the internal battery.
struct BatteryInfo {
  std::int64_t percent = 0;  ///< charge, at most 100
  bool isCharging = false;
  std::optional<std::int64_t> cycleCount;
  std::optional<std::int64_t>
      healthPercent;  ///< full-charge capacity in percent of the design capacity, at most 100

  /// Reads the power sources and, when one of them is an internal battery, the battery controller. Returns
  /// nullopt without an internal battery. Without a controller `cycleCount` and `healthPercent` are absent.
  static std::optional<BatteryInfo> read(const PowerPort& port);

  bool operator==(const BatteryInfo&) const = default;

 private:
  struct Charge {
    std::int64_t percent = 0;
    bool isCharging = false;
  };
  struct Wear {
    std::optional<std::int64_t> cycleCount;
    std::optional<std::int64_t> healthPercent;
  };

  static std::optional<Charge> readPowerSource(const PowerPort& port);
  static std::optional<Wear> readBatteryController(const PowerPort& port);
};

}  // namespace tarn
