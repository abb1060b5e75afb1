// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>

namespace tarn {

struct PowerPort;

/// The internal battery.
struct BatteryInfo {
  std::int64_t percent = 0;  ///< charge, at most 100
  bool isCharging = false;
  std::optional<std::int64_t> cycleCount;
  std::optional<std::int64_t> healthPercent;  ///< full charge as a share of the design's, at most 100

  /// Asks the power sources, then, if one of them is an internal battery, its controller. Nothing without
  /// such a source; a controller that does not answer leaves cycle count and health absent.
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
  static std::optional<Wear> readSmartBattery(const PowerPort& port);
};

}  // namespace tarn
