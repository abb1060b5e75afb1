// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/event_system.hpp"

#include <dlfcn.h>

namespace tarn::macos {

namespace {

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

}  // namespace tarn::macos
