// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/mac_extras.hpp"

#include <dlfcn.h>

#include <array>
#include <optional>
#include <span>
#include <vector>

namespace tarn::macos {

namespace {

constexpr std::int64_t temperatureEventType = 15;                      // kIOHIDEventTypeTemperature
constexpr std::int64_t temperatureField = temperatureEventType << 16;  // IOHIDEventFieldBase() of that type

// Temperature sensors are services with a usage on a vendor-defined HID usage page (0xFF00).
constexpr std::array<IntegerEntry, 2> temperatureSensors = {
    {{"PrimaryUsagePage", 0xFF00}, {"PrimaryUsage", 5}}};

template <typename Function>
void lookUp(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
}

using Keys = std::span<const char* const>;

constexpr std::array sourceKeys = {"Type", "Current Capacity", "Max Capacity", "Is Charging"};
constexpr std::array controllerKeys = {"CycleCount", "DesignCapacity", "AppleRawMaxCapacity", "MaxCapacity",
                                       "NominalChargeCapacity"};

PropertyValue valueOf(const ObjectFunctions& objects, ObjectRef object) {
  switch (objects.kindOf(object)) {
    case ObjectKind::boolean:
      return objects.booleanValue(object);
    case ObjectKind::integer:
      return objects.integerValue(object);
    case ObjectKind::real:
      return objects.realValue(object);
    case ObjectKind::string:
      return objects.stringValue(object);
    case ObjectKind::array:
    case ObjectKind::dictionary:
    case ObjectKind::other:
      break;
  }
  return std::monostate{};
}

/// The values of these keys; nullopt when the object is not a dictionary.
std::optional<PropertyDictionary> propertiesOf(const ObjectFunctions& objects, ObjectRef dictionary,
                                               Keys keys) {
  if (!objects.isDictionary(dictionary)) return std::nullopt;
  PropertyDictionary properties;
  for (const char* key : keys) {
    const ObjectRef value = objects.dictionaryItem(dictionary, key);
    if (value != nullptr) properties.emplace(key, valueOf(objects, value));
  }
  return properties;
}

std::vector<std::optional<PropertyDictionary>> readPowerSources(const PowerFunctions& power,
                                                                const ObjectFunctions& objects) {
  const OwnedObject info = objects.owned(power.copyPowerSourcesInfo());
  if (!info) return {};
  const OwnedObject list = objects.owned(power.copyPowerSourcesList(info.get()));
  if (!objects.isArray(list.get())) return {};
  std::vector<std::optional<PropertyDictionary>> sources;
  const std::int64_t count = objects.arrayCount(list.get());
  for (std::int64_t i = 0; i < count; ++i) {
    const ObjectRef source = objects.arrayItem(list.get(), i);
    sources.push_back(propertiesOf(objects, power.powerSourceDescription(info.get(), source), sourceKeys));
  }
  return sources;
}

std::optional<PropertyDictionary> readBatteryController(const PowerFunctions& power,
                                                        const ObjectFunctions& objects) {
  const RegistryEntry service = power.matchingService("AppleSmartBattery");
  if (service == 0) return std::nullopt;
  ObjectRef created = nullptr;
  const std::int32_t status = power.createProperties(service, &created);
  power.releaseService(service);
  const OwnedObject properties = objects.owned(created);
  if (status != 0) return std::nullopt;
  return propertiesOf(objects, properties.get(), controllerKeys);
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

PowerPort macPowerPort(const PowerFunctions& power, const ObjectFunctions& objects) {
  return {.powerSources = [power, objects] { return readPowerSources(power, objects); },
          .batteryController = [power, objects] { return readBatteryController(power, objects); }};
}

}  // namespace tarn::macos
