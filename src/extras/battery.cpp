// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "extras/battery.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

#include "extras/ports.hpp"

namespace tarn {

namespace {

constexpr std::int64_t wholePercent = 100;

/// The value for `key`; nullopt when it is absent or has another type.
template <typename Value>
std::optional<Value> valueOf(const PropertyDictionary& properties, std::string_view key) {
  const auto entry = properties.find(key);
  if (entry == properties.end()) return std::nullopt;
  const auto* value = std::get_if<Value>(&entry->second);
  return value ? std::optional(*value) : std::nullopt;
}

/// `part` in percent of `whole`. Rounds halves away from zero. The result is at most 100 and may be negative.
std::int64_t percentOf(std::int64_t part, std::int64_t whole) {
  const double percent =
      std::round(static_cast<double>(part) / static_cast<double>(whole) * static_cast<double>(wholePercent));
  if (percent >= static_cast<double>(wholePercent)) return wholePercent;
  constexpr auto lowest = std::numeric_limits<std::int64_t>::lowest();
  return percent <= static_cast<double>(lowest) ? lowest : static_cast<std::int64_t>(percent);
}

/// The full-charge capacity: the first of these keys that has an integer value.
std::optional<std::int64_t> fullChargeCapacity(const PropertyDictionary& controller) {
  for (const auto* key : {"AppleRawMaxCapacity", "MaxCapacity", "NominalChargeCapacity"}) {
    if (const auto capacity = valueOf<std::int64_t>(controller, key)) return capacity;
  }
  return std::nullopt;
}

}  // namespace

std::optional<BatteryInfo> BatteryInfo::read(const PowerPort& port) {
  const auto charge = readPowerSource(port);
  if (!charge) return std::nullopt;
  const Wear wear = readBatteryController(port).value_or(Wear{});
  return BatteryInfo{charge->percent, charge->isCharging, wear.cycleCount, wear.healthPercent};
}

std::optional<BatteryInfo::Charge> BatteryInfo::readPowerSource(const PowerPort& port) {
  for (const auto& source : port.powerSources()) {
    if (!source || valueOf<std::string>(*source, "Type") != "InternalBattery") continue;
    const auto current = valueOf<std::int64_t>(*source, "Current Capacity");
    const auto max = valueOf<std::int64_t>(*source, "Max Capacity");
    if (!current || !max || *max < 1) continue;
    // With a maximum of 100 the current capacity is already a percentage.
    const std::int64_t percent =
        *max == wholePercent ? std::min(*current, wholePercent) : percentOf(*current, *max);
    return Charge{percent, valueOf<bool>(*source, "Is Charging").value_or(false)};
  }
  return std::nullopt;
}

std::optional<BatteryInfo::Wear> BatteryInfo::readBatteryController(const PowerPort& port) {
  const auto controller = port.batteryController();
  if (!controller) return std::nullopt;
  Wear wear{.cycleCount = valueOf<std::int64_t>(*controller, "CycleCount")};
  const std::int64_t design = valueOf<std::int64_t>(*controller, "DesignCapacity").value_or(0);
  const std::int64_t full = fullChargeCapacity(*controller).value_or(0);
  if (design >= 1 && full >= 1) wear.healthPercent = percentOf(full, design);
  return wear;
}

}  // namespace tarn
