// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/event_system_sensors.hpp"

#include <dlfcn.h>

#include <array>

namespace tarn::macos {

namespace {

constexpr std::int64_t temperatureEventType = 15;                      // kIOHIDEventTypeTemperature
constexpr std::int64_t temperatureField = temperatureEventType << 16;  // IOHIDEventFieldBase() of it

// Temperature sensors are services with a usage on a vendor-defined HID usage page (0xFF00).
constexpr std::array<IntegerEntry, 2> temperatureSensors = {
    {{"PrimaryUsagePage", 0xFF00}, {"PrimaryUsage", 5}}};

template <typename Function>
void lookUp(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
}

}  // namespace

EventSystemFunctions lookUpEventSystem(const std::string& libraryPath) {
  EventSystemFunctions functions;
  void* const library = ::dlopen(libraryPath.c_str(), RTLD_NOW);
  if (library == nullptr) return functions;
  lookUp(library, "IOHIDEventSystemClientCreate", functions.create);
  lookUp(library, "IOHIDEventSystemClientSetMatching", functions.setMatching);
  lookUp(library, "IOHIDEventSystemClientCopyServices", functions.copyServices);
  lookUp(library, "IOHIDServiceClientCopyEvent", functions.copyEvent);
  lookUp(library, "IOHIDEventGetFloatValue", functions.getFloat);
  return functions;
}

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
