// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

#include "extras/ports.hpp"
#include "platform/macos/readers/framework_objects.hpp"

namespace tarn::macos {

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
