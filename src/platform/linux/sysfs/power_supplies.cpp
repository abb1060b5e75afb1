// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/power_supplies.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tarn {

namespace {

using Batteries = std::vector<const DeviceDirectory*>;

struct Sums {
  std::int64_t part = 0;
  std::int64_t whole = 0;
};

/// Returns false on overflow.
bool add(std::int64_t& sum, std::int64_t amount) {
  return !__builtin_add_overflow(sum, amount, &sum);
}

/// The sums of two files over the batteries that have both. Returns nullopt when the sum of `whole` is not
/// positive or a sum overflows.
std::optional<Sums> sumOver(const Batteries& batteries, std::string_view part, std::string_view whole) {
  Sums sums;
  for (const DeviceDirectory* battery : batteries) {
    const auto partValue = battery->number(part);
    if (!partValue) continue;
    const auto wholeValue = battery->number(whole);
    if (!wholeValue) continue;
    if (!add(sums.part, *partValue) || !add(sums.whole, *wholeValue)) return std::nullopt;
  }
  if (sums.whole < 1) return std::nullopt;
  return sums;
}

/// The charge by the attribute "capacity". Each battery has the same weight.
std::optional<Sums> sumPercentages(const Batteries& batteries) {
  constexpr std::int64_t full = 100;
  Sums sums;
  for (const DeviceDirectory* battery : batteries) {
    const auto percent = battery->number("capacity");
    if (percent && (!add(sums.part, *percent) || !add(sums.whole, full))) return std::nullopt;
  }
  if (sums.whole < 1) return std::nullopt;
  return sums;
}

std::optional<Sums> sumCharge(const Batteries& batteries) {
  if (const auto energy = sumOver(batteries, "energy_now", "energy_full")) return energy;
  if (const auto charge = sumOver(batteries, "charge_now", "charge_full")) return charge;
  return sumPercentages(batteries);
}

bool isCharging(const DeviceDirectory* battery) {
  return battery->text("status") == "Charging";
}

/// False for a supply whose driver was just bound and does not return its type or scope yet.
bool isReadable(const DeviceDirectory& supply) {
  return !supply.text("type").empty() && !(supply.has("scope") && supply.text("scope").empty());
}

bool isSystemBattery(const DeviceDirectory& supply) {
  if (supply.text("type") != "Battery") return false;
  return !supply.has("scope") || supply.text("scope") == "System";
}

}  // namespace

std::vector<std::optional<PropertyDictionary>> PowerSupplies::sources() {
  present_.clear();
  if (supplies_.hasChanged()) {
    batteries_ = supplies_.devices();
    const bool allReadable = std::all_of(batteries_.begin(), batteries_.end(), isReadable);
    std::erase_if(batteries_, [](const DeviceDirectory& supply) { return !isSystemBattery(supply); });
    if (allReadable) supplies_.markComplete();
  }
  for (const DeviceDirectory& battery : batteries_) {
    if (battery.text("present") != "0") present_.push_back(&battery);
  }
  const auto charge = sumCharge(present_);
  if (!charge) return {};
  return {PropertyDictionary{{"Type", std::string("InternalBattery")},
                             {"Current Capacity", charge->part},
                             {"Max Capacity", charge->whole},
                             {"Is Charging", std::any_of(present_.begin(), present_.end(), isCharging)}}};
}

std::optional<PropertyDictionary> PowerSupplies::controller() const {
  PropertyDictionary properties;
  std::int64_t cycles = 0;
  for (const DeviceDirectory* battery : present_) {
    cycles = std::max(cycles, battery->number("cycle_count").value_or(0));
  }
  if (cycles > 0) properties["CycleCount"] = cycles;
  auto capacities = sumOver(present_, "energy_full", "energy_full_design");
  if (!capacities) capacities = sumOver(present_, "charge_full", "charge_full_design");
  if (capacities) {
    properties["AppleRawMaxCapacity"] = capacities->part;
    properties["DesignCapacity"] = capacities->whole;
  }
  if (properties.empty()) return std::nullopt;
  return properties;
}

}  // namespace tarn
