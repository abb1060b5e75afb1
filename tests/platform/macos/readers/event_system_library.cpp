// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// A library with the event system's functions, over what the test prescribes. One of them may be left out.

#include "platform/macos/readers/event_system_library.hpp"

#define EXPORTED extern "C" __attribute__((visibility("default")))

using tarn::macos::FakeEventSystem;
using tarn::macos::FakeObject;
using tarn::macos::FakeSensor;

namespace {

FakeEventSystem* prescribed = nullptr;

const void* handOut(FakeObject object) {
  ++prescribed->created;
  return new FakeObject(std::move(object));
}

const FakeObject* known(const void* object) {
  return static_cast<const FakeObject*>(object);
}

}  // namespace

EXPORTED void prescribe(FakeEventSystem* system) {
  prescribed = system;
}

// The names are the system's.
// NOLINTBEGIN(readability-identifier-naming)
#ifndef WITHOUT_create
EXPORTED const void* IOHIDEventSystemClientCreate(const void* allocator) {
  prescribed->calls.emplace_back(allocator == nullptr ? "create" : "create with an allocator");
  if (prescribed->refusesClients) return nullptr;
  return handOut({.kind = FakeObject::Kind::client});
}
#endif

#ifndef WITHOUT_setMatching
EXPORTED void IOHIDEventSystemClientSetMatching(const void* client, const void* matching) {
  const bool fits = known(client)->kind == FakeObject::Kind::client &&
                    known(matching)->kind == FakeObject::Kind::dictionary;
  prescribed->calls.emplace_back(fits ? "setMatching" : "setMatching of the wrong objects");
}
#endif

#ifndef WITHOUT_copyServices
EXPORTED const void* IOHIDEventSystemClientCopyServices(const void* client) {
  const bool fits = known(client)->kind == FakeObject::Kind::client;
  prescribed->calls.emplace_back(fits ? "copyServices" : "copyServices of no client");
  if (prescribed->hasNoServices) return nullptr;
  if (prescribed->givesServicesOfAnotherKind) return handOut({.kind = FakeObject::Kind::other});
  FakeObject services{.kind = FakeObject::Kind::array};
  for (const FakeSensor& sensor : prescribed->sensors) services.items.push_back(&sensor.service);
  return handOut(std::move(services));
}
#endif

#ifndef WITHOUT_copyEvent
EXPORTED const void* IOHIDServiceClientCopyEvent(const void* service, std::int64_t type, std::int32_t options,
                                                 std::uint64_t timestamp) {
  prescribed->calls.push_back("copyEvent " + std::to_string(type) + ' ' + std::to_string(options) + ' ' +
                              std::to_string(timestamp));
  for (const FakeSensor& sensor : prescribed->sensors) {
    if (&sensor.service != service || !sensor.hasEvent) continue;
    return handOut({.kind = FakeObject::Kind::event, .reading = sensor.celsius});
  }
  return nullptr;
}
#endif

#ifndef WITHOUT_getFloat
EXPORTED double IOHIDEventGetFloatValue(const void* event, std::int64_t field) {
  const bool fits = known(event)->kind == FakeObject::Kind::event;
  prescribed->calls.push_back(fits ? "getFloat " + std::to_string(field) : "getFloat of no event");
  return known(event)->reading;
}
#endif
// NOLINTEND(readability-identifier-naming)
