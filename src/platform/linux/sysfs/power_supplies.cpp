// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/power_supplies.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tarn {

namespace {

using Packs = std::vector<const DeviceDirectory*>;

struct Sums {
  std::int64_t part = 0;
  std::int64_t whole = 0;
};

bool add(std::int64_t& sum, std::int64_t amount) {
  return !__builtin_add_overflow(sum, amount, &sum);
}

/// The sums of two files over the packs that have both; nothing when there is no such pack, when the whole is
/// nothing, or when a sum exceeds 64 bits.
std::optional<Sums> sumsOver(const Packs& packs, std::string_view part, std::string_view whole) {
  Sums sums;
  for (const DeviceDirectory* pack : packs) {
    const auto partly = pack->number(part);
    if (!partly) continue;
    const auto wholly = pack->number(whole);
    if (!wholly) continue;
    if (!add(sums.part, *partly) || !add(sums.whole, *wholly)) return std::nullopt;
  }
  if (sums.whole < 1) return std::nullopt;
  return sums;
}

/// Charge levels in percent: each pack counts the same.
std::optional<Sums> percentOver(const Packs& packs) {
  constexpr std::int64_t full = 100;
  Sums sums;
  for (const DeviceDirectory* pack : packs) {
    const auto percent = pack->number("capacity");
    if (percent && (!add(sums.part, *percent) || !add(sums.whole, full))) return std::nullopt;
  }
  if (sums.whole < 1) return std::nullopt;
  return sums;
}

std::optional<Sums> chargeOver(const Packs& packs) {
  if (const auto energy = sumsOver(packs, "energy_now", "energy_full")) return energy;
  if (const auto charge = sumsOver(packs, "charge_now", "charge_full")) return charge;
  return percentOver(packs);
}

bool isCharging(const DeviceDirectory* pack) {
  return pack->text("status") == "Charging";
}

/// False for a supply that came this moment, whose driver does not answer yet.
bool tellsWhatItIs(const DeviceDirectory& supply) {
  return !supply.text("type").empty() && !(supply.has("scope") && supply.text("scope").empty());
}

bool isOwnBattery(const DeviceDirectory& supply) {
  if (supply.text("type") != "Battery") return false;
  return !supply.has("scope") || supply.text("scope") == "System";
}

}  // namespace

std::vector<std::optional<PropertyDictionary>> PowerSupplies::sources() {
  present_.clear();
  if (supplies_.hasChanged()) {
    packs_ = supplies_.devices();
    const bool allAnswer = std::all_of(packs_.begin(), packs_.end(), tellsWhatItIs);
    std::erase_if(packs_, [](const DeviceDirectory& supply) { return !isOwnBattery(supply); });
    if (allAnswer) supplies_.settle();
  }
  for (const DeviceDirectory& pack : packs_) {
    if (pack.text("present") != "0") present_.push_back(&pack);
  }
  const auto charge = chargeOver(present_);
  if (!charge) return {};
  return {PropertyDictionary{{"Type", std::string("InternalBattery")},
                             {"Current Capacity", charge->part},
                             {"Max Capacity", charge->whole},
                             {"Is Charging", std::any_of(present_.begin(), present_.end(), isCharging)}}};
}

std::optional<PropertyDictionary> PowerSupplies::controller() const {
  PropertyDictionary properties;
  std::int64_t cycles = 0;
  for (const DeviceDirectory* pack : present_)
    cycles = std::max(cycles, pack->number("cycle_count").value_or(0));
  // Firmware that does not count reports 0.
  if (cycles > 0) properties["CycleCount"] = cycles;
  auto capacities = sumsOver(present_, "energy_full", "energy_full_design");
  if (!capacities) capacities = sumsOver(present_, "charge_full", "charge_full_design");
  if (capacities) {
    properties["AppleRawMaxCapacity"] = capacities->part;
    properties["DesignCapacity"] = capacities->whole;
  }
  if (properties.empty()) return std::nullopt;
  return properties;
}

}  // namespace tarn
