// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Temperatures, read through IOKit's HID event system. Its functions are exported but not declared in the
// public headers, so they are looked up by name.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/macos/readers/framework_objects.hpp"

namespace tarn::macos {

/// Functions of the HID event system; null where one was not found. The caller releases what `create`,
/// `copyServices` and `copyEvent` return, which may be null.
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
  /// event system and releases it and its objects. Empty, without any call, when a function was not found.
  std::vector<double> readings() const;

 private:
  std::vector<double> readingsOf(ObjectRef services) const;

  EventSystemFunctions events_;
  ObjectFunctions objects_;
};

}  // namespace tarn::macos
