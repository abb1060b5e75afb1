// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The kernel's records, as far as Tarn reads them. Layouts of our own, checked here by size and offset, and
// on a Mac against the system's declarations.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tarn::macos {

/// Where a process comes from.
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

/// What a process uses, version 6.
struct UsageRecord {
  std::array<std::uint64_t, 2> unread1;
  std::uint64_t userTime;    ///< ticks of the timebase
  std::uint64_t systemTime;  ///< likewise
  std::array<std::uint64_t, 5> unread2;
  std::uint64_t physicalFootprint;  ///< bytes
  std::array<std::uint64_t, 48> unread3;
};
static_assert(sizeof(UsageRecord) == 464);
static_assert(offsetof(UsageRecord, userTime) == 16);
static_assert(offsetof(UsageRecord, systemTime) == 24);
static_assert(offsetof(UsageRecord, physicalFootprint) == 72);

/// Swap.
struct SwapRecord {
  std::array<std::uint64_t, 2> unread1;
  std::uint64_t used;  ///< bytes
  std::uint64_t unread2;
};
static_assert(sizeof(SwapRecord) == 32);
static_assert(offsetof(SwapRecord, used) == 16);

/// Pages by their use. The system's record grew over time; this is the largest known. The kernel fills what
/// it knows.
struct MemoryRecord {
  std::array<std::uint32_t, 3> unread1;
  std::uint32_t wiredPages;
  std::array<std::uint32_t, 28> unread2;
  std::uint32_t compressorPages;
  std::uint32_t unread3;
  std::uint32_t externalPages;  ///< of files
  std::array<std::uint32_t, 27> unread4;
};
static_assert(sizeof(MemoryRecord) == 248);
static_assert(offsetof(MemoryRecord, wiredPages) == 12);
static_assert(offsetof(MemoryRecord, compressorPages) == 128);
static_assert(offsetof(MemoryRecord, externalPages) == 136);

/// Ticks times numerator by denominator are nanoseconds.
struct Timebase {
  std::uint32_t numerator;
  std::uint32_t denominator;
};
static_assert(sizeof(Timebase) == 8);

}  // namespace tarn::macos
