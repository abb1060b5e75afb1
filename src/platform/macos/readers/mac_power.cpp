// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/mac_power.hpp"

#include <array>
#include <optional>
#include <span>
#include <vector>

namespace tarn::macos {

namespace {

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
  ObjectRef found = nullptr;
  const std::int32_t status = power.createProperties(service, &found);
  power.releaseService(service);
  const OwnedObject properties = objects.owned(found);
  if (status != 0) return std::nullopt;
  return propertiesOf(objects, properties.get(), controllerKeys);
}

}  // namespace

PowerPort macPowerPort(const PowerFunctions& power, const ObjectFunctions& objects) {
  return {.powerSources = [power, objects] { return readPowerSources(power, objects); },
          .batteryController = [power, objects] { return readBatteryController(power, objects); }};
}

}  // namespace tarn::macos
