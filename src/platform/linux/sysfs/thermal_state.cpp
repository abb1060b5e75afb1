// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/thermal_state.hpp"

#include <set>
#include <string_view>

#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

bool isPlausibleZone(double celsius) {
  constexpr double lowerBound = 1;
  constexpr double upperBound = 150;
  return celsius > lowerBound && celsius < upperBound;
}

bool isPlausibleTrip(double celsius) {
  constexpr double lowerBound = 30;
  constexpr double upperBound = 130;
  return celsius > lowerBound && celsius < upperBound;
}

ThermalState stateOf(double celsius, const TripPoints& trips) {
  constexpr double marginBelowCritical = 5;
  constexpr double marginBelowPassive = 10;
  if (trips.critical && celsius >= *trips.critical - marginBelowCritical) return ThermalState::critical;
  if (trips.passive && celsius >= *trips.passive) return ThermalState::serious;
  if (trips.passive && celsius >= *trips.passive - marginBelowPassive) return ThermalState::fair;
  return trips.critical || trips.passive ? ThermalState::nominal : ThermalState::unknown;
}

ThermalState higherSeverity(ThermalState left, ThermalState right) {
  return static_cast<int>(left) > static_cast<int>(right) ? left : right;
}

namespace {

/// Whether the entry is a directory "cpuN", in contrast to others such as "cpufreq" and "cpuidle".
bool isProcessor(const DirectoryEntry& entry) {
  constexpr std::string_view prefix = "cpu";
  return entry.name.starts_with(prefix) &&
         parseWholeNumber<unsigned>(std::string_view(entry.name).substr(prefix.size())).has_value();
}

}  // namespace

void ThrottleCounters::findCounters() {
  const std::string processors = sys_ + "/devices/system/cpu";
  counters_.clear();
  std::set<std::string> packagesWithCounter;
  for (const DirectoryEntry& entry : listDirectory(processors)) {
    if (!isProcessor(entry)) continue;
    const std::string processor = processors + '/' + entry.name;
    DeviceDirectory directory(processor + "/thermal_throttle");
    if (directory.number("package_throttle_count")) {
      const std::string package = DeviceDirectory(processor + "/topology").text("physical_package_id");
      if (packagesWithCounter.insert(package).second) {
        counters_.push_back({std::move(directory), "package_throttle_count", std::nullopt});
      }
    } else if (directory.number("core_throttle_count")) {
      counters_.push_back({std::move(directory), "core_throttle_count", std::nullopt});
    }
  }
}

std::optional<bool> ThrottleCounters::haveIncreased(Time now) {
  constexpr auto maxInterval = std::chrono::seconds(10);
  const bool isRecent = now - std::exchange(previousCall_, now) <= maxInterval;
  if (isSearchNeeded_) findCounters();
  isSearchNeeded_ = false;
  std::optional<bool> increased;
  for (Counter& counter : counters_) {
    const auto count = counter.directory.number(counter.file);
    if (!count) {
      isSearchNeeded_ = true;
      continue;
    }
    increased = increased.value_or(false) || (isRecent && counter.previous && *count > *counter.previous);
    counter.previous = count;
  }
  return increased;
}

}  // namespace tarn
