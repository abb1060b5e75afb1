// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/event_system_sensors.hpp"

#include <array>

namespace tarn::macos {

namespace {

constexpr std::int64_t temperatureEventType = 15;
constexpr std::int64_t temperatureField = temperatureEventType << 16;

// Sensors are services on the usage page that is the vendor's own.
constexpr std::array<IntegerEntry, 2> temperatureSensors = {
    {{"PrimaryUsagePage", 0xFF00}, {"PrimaryUsage", 5}}};

}  // namespace

std::vector<double> EventSystemSensors::readings() const {
  if (!events_.areComplete()) return {};
  const OwnedObject client = objects_.owned(events_.create(objects_.defaultAllocator));
  if (!client) return {};
  const OwnedObject matching = objects_.owned(objects_.createDictionary(temperatureSensors));
  events_.setMatching(client.get(), matching.get());
  const OwnedObject services = objects_.owned(events_.copyServices(client.get()));
  if (!objects_.isArray(services.get())) return {};
  return readingsOf(services.get());
}

std::vector<double> EventSystemSensors::readingsOf(ObjectRef services) const {
  std::vector<double> readings;
  const std::int64_t count = objects_.arrayCount(services);
  for (std::int64_t i = 0; i < count; ++i) {
    const OwnedObject event =
        objects_.owned(events_.copyEvent(objects_.arrayItem(services, i), temperatureEventType, 0, 0));
    if (event) readings.push_back(events_.getFloat(event.get(), temperatureField));
  }
  return readings;
}

}  // namespace tarn::macos
