// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The result of one sweep over all processes, as plain values.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

/// The kernel's memory-pressure levels; the raw values are the kernel's level numbers.
enum class MemoryPressure : std::int32_t { normal = 1, warning = 2, critical = 4 };

/// The level with this raw value; nullopt for any other number (0, 3, 5 and above, negatives).
std::optional<MemoryPressure> memoryPressureFromRawValue(std::int32_t rawValue);

/// What a reading of the kernel's level means: 4 is critical, 2 is warning; every other number and a
/// failed reading are normal.
MemoryPressure memoryPressureFromReading(std::optional<std::int32_t> reading);

/// Immutable text with shared ownership: copies share one buffer. Paths and names of processes rarely change
/// from one sweep to the next, so all snapshots share them. Copies may be used on different threads.
class SharedText {
 public:
  SharedText() = default;
  // NOLINTBEGIN(google-explicit-constructor): used in place of std::string
  SharedText(std::string text)
      : text_(text.empty() ? nullptr : std::make_shared<const std::string>(std::move(text))) {}
  SharedText(const char* text) : SharedText(std::string(text)) {}
  operator std::string_view() const { return string(); }
  // NOLINTEND(google-explicit-constructor)

  /// Valid as long as any copy of this object exists.
  const std::string& string() const {
    static const std::string empty;
    return text_ ? *text_ : empty;
  }
  bool empty() const { return text_ == nullptr; }

  bool operator==(const SharedText& other) const {
    return text_ == other.text_ || string() == other.string();
  }
  bool operator==(std::string_view other) const { return string() == other; }
  bool operator==(const char* other) const { return string() == other; }
  bool operator==(const std::string& other) const { return string() == other; }

 private:
  std::shared_ptr<const std::string> text_;  // null for the empty text
};

inline std::ostream& operator<<(std::ostream& stream, const SharedText& text) {
  return stream << text.string();
}

/// System-wide memory figures in bytes. A figure that could not be read is 0.
struct SystemMemory {
  std::uint64_t totalRAM = 0;     ///< installed physical memory
  std::uint64_t wired = 0;        ///< memory that can be neither paged out nor dropped
  std::uint64_t compressed = 0;   ///< memory that holds compressed pages
  std::uint64_t cachedFiles = 0;  ///< file-backed pages that can be reclaimed immediately
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
  double cpuPercent = 0;        ///< percent of one core over the last interval, unsmoothed; may exceed 100

  bool operator==(const ProcessSample&) const = default;
};

/// The id of the row that sums up all groups that are not listed.
inline constexpr std::string_view everythingElseId = "everything-else";

/// The processes of one application, or one process without an application.
struct AppGroup {
  std::string id;                         ///< application root, "pid:N", or `everythingElseId`
  SharedText name;                        ///< display name
  std::optional<std::string> bundlePath;  ///< application root; absent without an application
  std::uint64_t footprint = 0;            ///< sum over the processes, bytes
  double cpuPercent = 0;                  ///< sum over the processes, smoothed, percent of one core
  std::vector<ProcessSample> processes;   ///< largest footprint first

  std::size_t processCount() const { return processes.size(); }

  /// A copy that has `count` default-constructed processes, so that its `processCount` is `count`. A negative
  /// count aborts the program.
  AppGroup withProcessCount(std::int64_t count) const;

  bool operator==(const AppGroup&) const = default;
};

/// The order of groups.
enum class SortMetric { memory, cpu };

/// The largest groups, and one row that sums up the others when there are any.
struct TopGroups {
  std::vector<AppGroup> rows;
  std::optional<AppGroup> everythingElse;
};

/// The result of one sweep. Passed between threads by value.
struct MemorySnapshot {
  SystemMemory system;           ///< read at the end of the sweep
  std::vector<AppGroup> groups;  ///< largest footprint first
  double sweepDuration = 0;      ///< duration of the sweep over processes, seconds

  /// Sum of the groups' footprints, bytes. Overflow aborts the program.
  std::uint64_t attributedTotal() const;

  /// Sum of the groups' `cpuPercent`.
  double totalCPUPercent() const;

  /// The first `limit` groups in descending order of the metric. Equal groups keep their order in `groups`. A
  /// negative limit aborts the program, also when there are no groups. An overflow in `everythingElse` aborts
  /// the program, too.
  TopGroups topGroups(SortMetric by, std::int64_t limit) const;

  bool operator==(const MemorySnapshot&) const = default;
};

}  // namespace tarn
