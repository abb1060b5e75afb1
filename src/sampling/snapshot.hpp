// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sampling/shared_text.hpp"

namespace tarn {

/// The kernel's memory-pressure levels; the raw values are the kernel's own level numbers.
enum class MemoryPressure : std::int32_t { normal = 1, warning = 2, critical = 4 };

/// The level with this raw value; nothing for any other number (0, 3, 5 and above, negatives).
std::optional<MemoryPressure> memoryPressureFromRawValue(std::int32_t rawValue);

/// What a reading of the kernel's level means: 4 is critical, 2 is warning; every other number and a
/// failed reading are normal.
MemoryPressure memoryPressureFromReading(std::optional<std::int32_t> reading);

/// System-wide memory figures in bytes. A figure that could not be read is 0.
struct SystemMemory {
  std::uint64_t totalRAM = 0;     ///< installed physical memory
  std::uint64_t wired = 0;        ///< memory that can be neither paged out nor dropped
  std::uint64_t compressed = 0;   ///< memory held by the compressor
  std::uint64_t cachedFiles = 0;  ///< file-backed pages that can be given back at once
  std::uint64_t swapUsed = 0;     ///< swap space in use

  bool operator==(const SystemMemory&) const = default;
};

/// One process in one sweep, identified by its pid.
struct ProcessSample {
  std::int32_t pid = 0;
  std::int32_t ppid = 0;        ///< parent pid; 0 when unknown
  std::uint32_t uid = 0;        ///< owning user; 0 when unknown
  SharedText path;              ///< executable path; empty when unknown
  SharedText name;              ///< for display, never for grouping
  std::uint64_t footprint = 0;  ///< bytes
  double cpuPercent = 0;        ///< share of one core over the last interval, unsmoothed; may exceed 100

  bool operator==(const ProcessSample&) const = default;
};

/// Processes gathered under one key, identified by that key.
struct AppGroup {
  std::string id;   ///< application root, "pid:N", or "everything-else"
  SharedText name;  ///< display name
  std::optional<std::string>
      bundlePath;               ///< application root; absent for ungrouped processes and the aggregate
  std::uint64_t footprint = 0;  ///< sum over the members, bytes
  double cpuPercent = 0;        ///< smoothed share of one core
  std::vector<ProcessSample> processes;  ///< largest footprint first

  std::size_t processCount() const { return processes.size(); }

  /// A copy whose members are `count` placeholders, so that an aggregate carries a process count without
  /// carrying processes. A negative count stops the program.
  AppGroup withProcessCount(std::int64_t count) const;

  bool operator==(const AppGroup&) const = default;
};

/// What groups are ranked by.
enum class SortMetric { memory, cpu };

/// The heaviest groups, and one row that sums up the others when there are any.
struct TopGroups {
  std::vector<AppGroup> rows;
  std::optional<AppGroup> everythingElse;
};

/// Everything that one sweep found. Immutable by convention; copied freely between threads.
struct MemorySnapshot {
  SystemMemory system;           ///< read at the end of the sweep
  std::vector<AppGroup> groups;  ///< largest footprint first
  double sweepDuration = 0;      ///< seconds that the process sweep took

  /// Sum of the groups' footprints in bytes. Overflow stops the program.
  std::uint64_t attributedTotal() const;

  /// Sum of the groups' shares, in percent of one core.
  double totalCPUPercent() const;

  /// The first `limit` groups by `by`, descending; equal groups keep their order in `groups`. A negative
  /// limit, and an overflowing sum over the folded groups, stop the program.
  TopGroups topGroups(SortMetric by, std::int64_t limit) const;

  bool operator==(const MemorySnapshot&) const = default;
};

}  // namespace tarn
