// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/thermal_zones.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tarn {

namespace {

/// Takes the lower of two trip points.
void lower(std::optional<double>& trip, double celsius) {
  trip = std::min(trip.value_or(celsius), celsius);
}

/// The trip points of these zones are thresholds at which programs ask to be told; nothing is slowed there.
bool hasOnlyThresholds(std::string_view type) {
  return type == "x86_pkg_temp" || type.starts_with("soc_dts");
}

TripPoints readTripPoints(const DeviceDirectory& zone) {
  constexpr std::string_view stem = "trip_point_";
  constexpr std::string_view typeEnding = "_type";
  TripPoints trips;
  for (const std::string& file : zone.files()) {
    if (!file.starts_with(stem) || !file.ends_with(typeEnding)) continue;
    const std::string type = zone.text(file);
    const auto celsius = zone.celsius(file.substr(0, file.size() - typeEnding.size()) + "_temp");
    if (!celsius || !isPlausibleTrip(*celsius)) continue;
    if (type == "passive") lower(trips.passive, *celsius);
    if (type == "hot" || type == "critical") lower(trips.critical, *celsius);
  }
  return trips;
}

}  // namespace

void ThermalZones::refresh() {
  if (!zones_.hasChanged()) return;
  known_.clear();
  bool allAnswer = true;
  for (DeviceDirectory& directory : zones_.devices()) {
    if (!directory.has("temp")) continue;  // a cooling device
    std::string type = directory.text("type");
    allAnswer = allAnswer && !type.empty();
    const TripPoints trips = hasOnlyThresholds(type) ? TripPoints{} : readTripPoints(directory);
    known_.push_back({std::move(directory), std::move(type), trips});
  }
  if (allAnswer) zones_.settle();  // else one came this moment and does not answer yet
}

ThermalState ThermalZones::state() const {
  ThermalState state = ThermalState::unknown;
  for (const ThermalZone& zone : known_) {
    if (zone.trips == TripPoints{}) continue;
    const auto celsius = zone.directory.celsius("temp");
    if (celsius && isPlausibleZone(*celsius)) state = graver(state, stateOf(*celsius, zone.trips));
  }
  return state;
}

}  // namespace tarn
