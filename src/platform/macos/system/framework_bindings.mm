// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <IOKit/ps/IOPowerSources.h>

#include <cstddef>
#include <vector>

#include "platform/macos/system/mac_system.hpp"

namespace tarn::macos {

namespace {

OwnedObject owned(ObjectRef object) {
  return {object, CFRelease};
}

// Never null: keys are ASCII literals.
OwnedObject makeKey(const char* key) {
  return owned(CFStringCreateWithCString(kCFAllocatorDefault, key, kCFStringEncodingUTF8));
}

OwnedObject makeInteger(std::int64_t value) {
  return owned(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}

ObjectRef createDictionary(std::span<const IntegerEntry> entries) {
  std::vector<OwnedObject> parts;  // released after the dictionary retained them
  std::vector<ObjectRef> keys;
  std::vector<ObjectRef> values;
  for (const IntegerEntry& entry : entries) {
    keys.push_back(parts.emplace_back(makeKey(entry.key)).get());
    values.push_back(parts.emplace_back(makeInteger(entry.value)).get());
  }
  return CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(),
                            static_cast<CFIndex>(entries.size()), &kCFTypeDictionaryKeyCallBacks,
                            &kCFTypeDictionaryValueCallBacks);
}

ObjectKind kindOf(ObjectRef object) {
  const CFTypeID type = CFGetTypeID(object);
  if (type == CFBooleanGetTypeID()) return ObjectKind::boolean;
  if (type == CFNumberGetTypeID()) {
    return CFNumberIsFloatType(static_cast<CFNumberRef>(object)) ? ObjectKind::real : ObjectKind::integer;
  }
  if (type == CFStringGetTypeID()) return ObjectKind::string;
  if (type == CFArrayGetTypeID()) return ObjectKind::array;
  if (type == CFDictionaryGetTypeID()) return ObjectKind::dictionary;
  return ObjectKind::other;
}

bool booleanValue(ObjectRef boolean) {
  return CFBooleanGetValue(static_cast<CFBooleanRef>(boolean)) != 0;
}

std::int64_t integerValue(ObjectRef integer) {
  std::int64_t value = 0;
  CFNumberGetValue(static_cast<CFNumberRef>(integer), kCFNumberSInt64Type, &value);
  return value;
}

double realValue(ObjectRef real) {
  double value = 0;
  CFNumberGetValue(static_cast<CFNumberRef>(real), kCFNumberDoubleType, &value);
  return value;
}

std::string stringValue(ObjectRef string) {
  const auto text = static_cast<CFStringRef>(string);
  const CFIndex longest = CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8);
  std::vector<char> buffer(static_cast<std::size_t>(longest) + 1);
  const bool converted = CFStringGetCString(text, buffer.data(), longest + 1, kCFStringEncodingUTF8) != 0;
  return converted ? std::string(buffer.data()) : std::string();
}

std::int64_t arrayCount(ObjectRef array) {
  return CFArrayGetCount(static_cast<CFArrayRef>(array));
}

ObjectRef arrayItem(ObjectRef array, std::int64_t index) {
  return CFArrayGetValueAtIndex(static_cast<CFArrayRef>(array), index);
}

ObjectRef dictionaryItem(ObjectRef dictionary, const char* key) {
  return CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), makeKey(key).get());
}

ObjectRef copyPowerSourcesList(ObjectRef info) {
  return IOPSCopyPowerSourcesList(info);
}

ObjectRef powerSourceDescription(ObjectRef info, ObjectRef source) {
  return IOPSGetPowerSourceDescription(info, source);
}

RegistryEntry matchingService(const char* className) {
  // IOServiceGetMatchingService releases the dictionary.
  return IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching(className));
}

std::int32_t createProperties(RegistryEntry service, ObjectRef* properties) {
  CFMutableDictionaryRef created = nullptr;
  const kern_return_t result =
      IORegistryEntryCreateCFProperties(service, &created, kCFAllocatorDefault, kNilOptions);
  *properties = created;
  return result;
}

void releaseService(RegistryEntry service) {
  IOObjectRelease(service);
}

}  // namespace

const ObjectFunctions& objectFunctions() {
  static const ObjectFunctions functions = {
      .defaultAllocator = kCFAllocatorDefault,
      .createDictionary = createDictionary,
      .kindOf = kindOf,
      .booleanValue = booleanValue,
      .integerValue = integerValue,
      .realValue = realValue,
      .stringValue = stringValue,
      .arrayCount = arrayCount,
      .arrayItem = arrayItem,
      .dictionaryItem = dictionaryItem,
      .release = CFRelease,
  };
  return functions;
}

const PowerFunctions& powerFunctions() {
  static const PowerFunctions functions = {
      .copyPowerSourcesInfo = IOPSCopyPowerSourcesInfo,
      .copyPowerSourcesList = copyPowerSourcesList,
      .powerSourceDescription = powerSourceDescription,
      .matchingService = matchingService,
      .createProperties = createProperties,
      .releaseService = releaseService,
  };
  return functions;
}

}  // namespace tarn::macos
