// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The event system through which the machine's sensors are read. Its functions are not part of the system's
// published interface, so they are looked up by name.

#pragma once

#include <cstdint>
#include <string>

#include "platform/macos/readers/framework_objects.hpp"

namespace tarn::macos {

/// The functions of the event system; null where one was not found. What `create`, `copyServices` and
/// `copyEvent` return is the caller's to release, and may be null.
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

/// Looks the functions up in the library at a path. The library stays open for as long as the process lives,
/// since the functions are used until then. A library that cannot be opened has none of them.
EventSystemFunctions lookUpEventSystem(const std::string& libraryPath = eventSystemLibrary);

}  // namespace tarn::macos
