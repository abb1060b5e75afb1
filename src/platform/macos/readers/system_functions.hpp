// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/macos/readers/system_records.hpp"

namespace tarn::macos {

/// The kernel's functions, with the system's own arguments, results and conventions.
struct SystemFunctions {
  int (*sysctlByName)(const char* name, void* value, std::size_t* size, void* newValue, std::size_t newSize);
  int (*hostStatistics)(int flavor, void* record, std::uint32_t* wordCount);  ///< of this host; 0 for success
  std::uint64_t pageSize;                                                     ///< bytes
  int (*timebaseInfo)(Timebase* timebase);
  int (*listPIDs)(std::uint32_t type, std::uint32_t argument, void* buffer, int size);
  int (*pidUsage)(int pid, int flavor, void* record);
  int (*pidPath)(int pid, void* buffer, std::uint32_t size);
  int (*pidInfo)(int pid, int flavor, std::uint64_t argument, void* record, int size);
};

/// The running system's; defined where the system is at hand.
const SystemFunctions& systemFunctions();

}  // namespace tarn::macos
