// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

#include "platform/macos/readers/framework_objects.hpp"

namespace tarn::macos {

/// A handle of the system's registry; 0 for none.
using RegistryEntry = std::uint32_t;

/// The system's functions about power sources and the battery's controller.
struct PowerFunctions {
  ObjectRef (*copyPowerSourcesInfo)();                ///< the caller owns the result; may be null
  ObjectRef (*copyPowerSourcesList)(ObjectRef info);  ///< likewise
  ObjectRef (*powerSourceDescription)(ObjectRef info, ObjectRef source);  ///< owned by `info`; may be null
  /// The first service of a class on the main port, to be released; 0 without one.
  RegistryEntry (*matchingService)(const char* className);
  /// 0 for success. The caller owns what is put into `properties`.
  std::int32_t (*createProperties)(RegistryEntry service, ObjectRef* properties);
  void (*releaseService)(RegistryEntry service);
};

}  // namespace tarn::macos
