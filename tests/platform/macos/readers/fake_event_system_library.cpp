// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// A fake library with the HID event system's functions, which return the values of a FakeEventSystem.
// WITHOUT_x omits the function x.

#include "platform/macos/readers/fake_event_system.hpp"

#define EXPORTED extern "C" __attribute__((visibility("default")))

using namespace tarn::macos;

namespace {

FakeEventSystem* prescribed = nullptr;

const FakeObject client{std::string("client")};

bool isClient(ObjectRef object) {
  return FakeFrameworks::fakeOf(object)->value == client.value;
}

}  // namespace

EXPORTED void prescribe(FakeEventSystem* system) {
  prescribed = system;
}

// The functions have the names of IOKit's functions.
// NOLINTBEGIN(readability-identifier-naming)
#ifndef WITHOUT_create
EXPORTED const void* IOHIDEventSystemClientCreate(const void* allocator) {
  prescribed->calls.emplace_back(allocator == nullptr ? "create" : "create with an allocator");
  if (prescribed->refusesClients) return nullptr;
  return prescribed->frameworks->ownedCopy(client);
}
#endif

#ifndef WITHOUT_setMatching
EXPORTED void IOHIDEventSystemClientSetMatching(const void* object, const void* matching) {
  const bool isValid = isClient(object) && FakeFrameworks::functions().isDictionary(matching);
  prescribed->calls.emplace_back(isValid ? "setMatching" : "setMatching of the wrong objects");
}
#endif

#ifndef WITHOUT_copyServices
EXPORTED const void* IOHIDEventSystemClientCopyServices(const void* object) {
  prescribed->calls.emplace_back(isClient(object) ? "copyServices" : "copyServices of no client");
  if (prescribed->hasNoServices) return nullptr;
  if (prescribed->givesServicesOfAnotherKind) return prescribed->frameworks->ownedCopy({});
  FakeObject::Array services;
  for (const FakeSensor& sensor : prescribed->sensors) services.push_back(&sensor.service);
  return prescribed->frameworks->ownedCopy({std::move(services)});
}
#endif

#ifndef WITHOUT_copyEvent
EXPORTED const void* IOHIDServiceClientCopyEvent(const void* service, std::int64_t type, std::int32_t options,
                                                 std::uint64_t timestamp) {
  prescribed->calls.push_back("copyEvent " + std::to_string(type) + ' ' + std::to_string(options) + ' ' +
                              std::to_string(timestamp));
  for (const FakeSensor& sensor : prescribed->sensors) {
    if (&sensor.service != service || !sensor.hasEvent) continue;
    return prescribed->frameworks->ownedCopy({sensor.celsius});
  }
  return nullptr;
}
#endif

#ifndef WITHOUT_getFloat
EXPORTED double IOHIDEventGetFloatValue(const void* event, std::int64_t field) {
  const auto* reading = std::get_if<double>(&FakeFrameworks::fakeOf(event)->value);
  prescribed->calls.push_back(reading ? "getFloat " + std::to_string(field) : "getFloat of no event");
  return reading ? *reading : 0;
}
#endif
// NOLINTEND(readability-identifier-naming)
