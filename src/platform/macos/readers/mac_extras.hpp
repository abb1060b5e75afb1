// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Temperatures, power sources and the battery controller, read through IOKit. Temperatures come from its HID
// event system, whose functions are exported but not declared in the public headers, so they are looked up by
// name.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "extras/ports.hpp"
#include "platform/macos/readers/framework_objects.hpp"

namespace tarn::macos {

/// Functions of the HID event system. A function that was not found is null. The caller releases what
/// `create`, `copyServices` and `copyEvent` return, which may be null.
struct EventSystemFunctions {
  ObjectRef (*create)(ObjectRef allocator) = nullptr;
  void (*setMatching)(ObjectRef client, ObjectRef matching) = nullptr;
  ObjectRef (*copyServices)(ObjectRef client) = nullptr;
  ObjectRef (*copyEvent)(ObjectRef service, std::int64_t type, std::int32_t options,
                         std::uint64_t timestamp) = nullptr;
  double (*getFloat)(ObjectRef event, std::int64_t field) = nullptr;

  bool areComplete() const { return create && setMatching && copyServices && copyEvent && getFloat; }
};

constexpr auto eventSystemLibrary = "/System/Library/Frameworks/IOKit.framework/IOKit";

/// Looks up the functions in the library at a path. All are null when it cannot be opened. The library stays
/// open until the process ends, because the functions are used until then.
EventSystemFunctions lookUpEventSystem(const std::string& libraryPath);

/// The temperature sensors. One thread at a time.
class EventSystemSensors {
 public:
  EventSystemSensors(const EventSystemFunctions& events, const ObjectFunctions& objects)
      : events_(events), objects_(objects) {}

  /// The value of each sensor that has one, degrees Celsius, in the system's order. Creates a client of the
  /// event system and releases it and its objects. Makes no call and returns an empty vector when a function
  /// was not found.
  std::vector<double> readings() const;

 private:
  std::vector<double> readingsOf(ObjectRef services) const;

  EventSystemFunctions events_;
  ObjectFunctions objects_;
};

/// An io_registry_entry_t; 0 for none.
using RegistryEntry = std::uint32_t;

/// IOKit's functions for power sources and for the battery controller in the I/O Registry.
struct PowerFunctions {
  ObjectRef (*copyPowerSourcesInfo)();                                    ///< caller releases; may be null
  ObjectRef (*copyPowerSourcesList)(ObjectRef info);                      ///< caller releases; may be null
  ObjectRef (*powerSourceDescription)(ObjectRef info, ObjectRef source);  ///< owned by `info`; may be null
  /// The first service of a class; the caller releases it. 0 when there is none.
  RegistryEntry (*matchingService)(const char* className);
  /// KERN_SUCCESS is 0. The caller releases `*properties`.
  std::int32_t (*createProperties)(RegistryEntry service, ObjectRef* properties);
  void (*releaseService)(RegistryEntry service);
};

/// Power sources and battery controller. Each call reads the system and releases what it obtained.
PowerPort macPowerPort(const PowerFunctions& power, const ObjectFunctions& objects);

}  // namespace tarn::macos
