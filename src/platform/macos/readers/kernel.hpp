// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The kernel's functions and records that the readers use. They need no system header, so that the readers
// compile and are tested on every system. The layouts are checked here by size and offset, and in
// system/kernel_bindings.cpp against the system's headers. Source of the layouts: the xnu headers named at
// each record.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tarn::macos {

/// struct proc_bsdinfo, <sys/proc_info.h>.
struct ProcessRecord {
  std::array<std::uint32_t, 3> unread1;
  std::uint32_t pid;
  std::uint32_t ppid;
  std::uint32_t uid;
  std::array<std::uint32_t, 24> unread2;
  std::uint64_t startSeconds;  ///< since the epoch
  std::uint64_t unread3;
};
static_assert(sizeof(ProcessRecord) == 136);
static_assert(offsetof(ProcessRecord, pid) == 12);
static_assert(offsetof(ProcessRecord, ppid) == 16);
static_assert(offsetof(ProcessRecord, uid) == 20);
static_assert(offsetof(ProcessRecord, startSeconds) == 120);

/// struct rusage_info_v6, <sys/resource.h>.
struct UsageRecord {
  std::array<std::uint64_t, 2> unread1;
  std::uint64_t userTime;    ///< in units of mach_absolute_time()
  std::uint64_t systemTime;  ///< in the same units
  std::array<std::uint64_t, 5> unread2;
  std::uint64_t physicalFootprint;  ///< bytes
  std::array<std::uint64_t, 48> unread3;
};
static_assert(sizeof(UsageRecord) == 464);
static_assert(offsetof(UsageRecord, userTime) == 16);
static_assert(offsetof(UsageRecord, systemTime) == 24);
static_assert(offsetof(UsageRecord, physicalFootprint) == 72);

/// struct xsw_usage, <sys/sysctl.h>.
struct SwapRecord {
  std::array<std::uint64_t, 2> unread1;
  std::uint64_t used;  ///< bytes
  std::uint64_t unread2;
};
static_assert(sizeof(SwapRecord) == 32);
static_assert(offsetof(SwapRecord, used) == 16);

/// struct vm_statistics64, <mach/vm_statistics.h>: numbers of pages. New versions add fields; this is the
/// largest known version. An older kernel fills only the fields that it has.
struct MemoryRecord {
  std::array<std::uint32_t, 3> unread1;
  std::uint32_t wiredPages;
  std::array<std::uint32_t, 28> unread2;
  std::uint32_t compressorPages;
  std::uint32_t unread3;
  std::uint32_t externalPages;  ///< file-backed
  std::array<std::uint32_t, 27> unread4;
};
static_assert(sizeof(MemoryRecord) == 248);
static_assert(offsetof(MemoryRecord, wiredPages) == 12);
static_assert(offsetof(MemoryRecord, compressorPages) == 128);
static_assert(offsetof(MemoryRecord, externalPages) == 136);

/// struct mach_timebase_info, <mach/mach_time.h>: nanoseconds = ticks * numerator / denominator.
struct Timebase {
  std::uint32_t numerator;
  std::uint32_t denominator;
};
static_assert(sizeof(Timebase) == 8);

/// The kernel's functions, with the same arguments, results and conventions as the system's functions.
struct KernelFunctions {
  int (*sysctlByName)(const char* name, void* value, std::size_t* size, void* newValue, std::size_t newSize);
  int (*hostStatistics)(int flavor, void* record,
                        std::uint32_t* wordCount);  ///< host_statistics64 of this host; KERN_SUCCESS is 0
  std::uint64_t pageSize;                           ///< bytes
  int (*timebaseInfo)(Timebase* timebase);
  int (*listPIDs)(std::uint32_t type, std::uint32_t argument, void* buffer, int size);
  int (*pidUsage)(int pid, int flavor, void* record);
  int (*pidPath)(int pid, void* buffer, std::uint32_t size);
  int (*pidInfo)(int pid, int flavor, std::uint64_t argument, void* record, int size);
};

}  // namespace tarn::macos
