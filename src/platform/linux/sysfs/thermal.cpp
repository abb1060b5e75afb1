// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/thermal.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <set>
#include <utility>

#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

void setMinimum(std::optional<double>& trip, double celsius) {
  trip = std::min(trip.value_or(celsius), celsius);
}

/// The trip points of these zones are thresholds that user space sets for notifications
/// (Documentation/driver-api/thermal/x86_pkg_temperature_thermal.rst). The kernel does not slow down there.
bool hasOnlyNotificationTrips(std::string_view type) {
  return type == "x86_pkg_temp" || type.starts_with("soc_dts");
}

TripPoints readTripPoints(const DeviceDirectory& zone) {
  constexpr std::string_view prefix = "trip_point_";
  constexpr std::string_view typeSuffix = "_type";
  TripPoints trips;
  for (const std::string& file : zone.files()) {
    if (!file.starts_with(prefix) || !file.ends_with(typeSuffix)) continue;
    const std::string type = zone.text(file);
    const auto celsius = zone.celsius(file.substr(0, file.size() - typeSuffix.size()) + "_temp");
    if (!celsius || !isPlausibleTrip(*celsius)) continue;
    if (type == "passive") setMinimum(trips.passive, *celsius);
    if (type == "hot" || type == "critical") setMinimum(trips.critical, *celsius);
  }
  return trips;
}

/// Whether the name is "tempN_input".
bool isTemperatureInput(std::string_view file) {
  constexpr std::string_view prefix = "temp";
  constexpr std::string_view suffix = "_input";
  if (!file.starts_with(prefix) || !file.ends_with(suffix)) return false;
  file.remove_prefix(prefix.size());
  file.remove_suffix(std::min(file.size(), suffix.size()));
  return parseWholeNumber<unsigned>(file).has_value();
}

std::string labelOf(const DeviceDirectory& chip, const std::string& input) {
  constexpr std::string_view suffix = "input";
  return chip.text(input.substr(0, input.size() - suffix.size()) + "label");
}

std::vector<std::string> temperatureInputs(const DeviceDirectory& chip) {
  std::vector<std::string> inputs = chip.files();
  std::erase_if(inputs, [](const std::string& file) { return !isTemperatureInput(file); });
  // AMD's Tctl is a control value for fans, not a physical temperature (Documentation/hwmon/k10temp.rst). On
  // some processors it is 10 to 27 degrees above the temperature of the die. These processors have Tdie as
  // well.
  const auto isDie = [&](const std::string& input) { return labelOf(chip, input) == "Tdie"; };
  if (std::any_of(inputs.begin(), inputs.end(), isDie)) {
    std::erase_if(inputs, [&](const std::string& input) { return labelOf(chip, input) == "Tctl"; });
  }
  return inputs;
}

/// Drivers use upper or lower case. Thermal zones use hyphens where hwmon chips use underscores.
std::string normalizedName(std::string_view name) {
  std::string normalized(name);
  for (char& character : normalized) {
    character =
        character == '-' ? '_' : static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return normalized;
}

template <typename Matches>
std::vector<double> readZones(const ThermalZones& zones, Matches matches) {
  std::vector<double> readings;
  for (const ThermalZone& zone : zones.all()) {
    if (!matches(zone.type)) continue;
    if (const auto celsius = zone.directory.celsius("temp")) readings.push_back(*celsius);
  }
  return readings;
}

/// Whether the entry is a directory "cpuN", in contrast to others such as "cpufreq" and "cpuidle".
bool isProcessor(const DirectoryEntry& entry) {
  constexpr std::string_view prefix = "cpu";
  return entry.name.starts_with(prefix) &&
         parseWholeNumber<unsigned>(std::string_view(entry.name).substr(prefix.size())).has_value();
}

}  // namespace

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

void ThermalZones::refresh() {
  if (!zones_.hasChanged()) return;
  known_.clear();
  bool allReadable = true;
  for (DeviceDirectory& directory : zones_.devices()) {
    if (!directory.has("temp")) continue;  // a cooling device
    std::string type = directory.text("type");
    allReadable = allReadable && !type.empty();
    const TripPoints trips = hasOnlyNotificationTrips(type) ? TripPoints{} : readTripPoints(directory);
    known_.push_back({std::move(directory), std::move(type), trips});
  }
  if (allReadable) zones_.markComplete();
}

ThermalState ThermalZones::state() const {
  ThermalState state = ThermalState::unknown;
  for (const ThermalZone& zone : known_) {
    if (zone.trips == TripPoints{}) continue;
    const auto celsius = zone.directory.celsius("temp");
    if (celsius && isPlausibleZone(*celsius)) state = higherSeverity(state, stateOf(*celsius, zone.trips));
  }
  return state;
}

bool isProcessorSensor(std::string_view name) {
  constexpr std::array<std::string_view, 10> names = {
      "coretemp",     "k8temp", "k10temp",     "zenpower",        "via_cputemp",
      "x86_pkg_temp", "b0d4",   "soc_thermal", "package_thermal", "imx_thermal_zone"};
  constexpr std::array<std::string_view, 6> prefixes = {"cpu",     "tcpu",       "soc_dts",
                                                        "bigcore", "littlecore", "cluster"};
  const std::string normalized = normalizedName(name);
  return std::find(names.begin(), names.end(), normalized) != names.end() ||
         std::any_of(prefixes.begin(), prefixes.end(),
                     [&](std::string_view prefix) { return normalized.starts_with(prefix); });
}

void ProcessorSensors::findSensors() {
  sensors_.clear();
  bool allReadable = true;
  for (DeviceDirectory& directory : chips_.devices()) {
    const std::string name = directory.text("name");
    const bool measuresProcessor = isProcessorSensor(name);
    auto inputs = measuresProcessor ? temperatureInputs(directory) : std::vector<std::string>();
    allReadable = allReadable && !name.empty() && (!measuresProcessor || !inputs.empty());
    if (!inputs.empty()) sensors_.push_back({std::move(directory), std::move(inputs)});
  }
  if (allReadable) chips_.markComplete();
}

std::vector<double> ProcessorSensors::readings(const ThermalZones& zones) {
  if (chips_.hasChanged()) findSensors();
  std::vector<double> readings;
  for (const Chip& chip : sensors_) {
    for (const std::string& input : chip.inputs) {
      if (const auto celsius = chip.directory.celsius(input)) readings.push_back(*celsius);
    }
  }
  if (readings.empty()) readings = readZones(zones, isProcessorSensor);
  if (readings.empty()) readings = readZones(zones, [](std::string_view type) { return type == "acpitz"; });
  return readings;
}

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
