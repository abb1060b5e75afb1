// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// When memory is short: from what the kernel counts to a MemoryPressure level. Plain functions of readings.

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "platform/linux/procfs/system_memory.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// How much memory is left to be had.
struct MemoryAvailability {
  double availableShare = 0;  ///< 0 to 1: what programs can get without swapping
  double freeSwapShare = 0;   ///< 0 to 1; a machine without swap has none free
};

/// Nothing when the total or the available memory is not known.
std::optional<MemoryAvailability> memoryAvailability(const MemoryInfo& info);

/// Whether tasks had to wait for memory beyond what is usual, within a short time just past.
struct StallVerdict {
  bool some = false;  ///< at least one task waited a tenth of the time
  bool full = false;  ///< all that could have run waited a fifth of the time
};

/// The verdict for the time between two readings of the kernel's totals; no stall when no time passed.
StallVerdict stallsBetween(const MemoryStalls& before, const MemoryStalls& after,
                           std::chrono::nanoseconds elapsed);

/// What the kernel reports of stalls, less what it reports by mistake: the first report of each kind may come
/// with the first wait, however short, as if it counted from the machine's start.
class StallReports {
 public:
  /// `atFirst` is what was read once the reports were asked for; without it, all of them are believed.
  explicit StallReports(const std::optional<MemoryStalls>& atFirst) : atFirst_(atFirst) {}

  /// Gives what to believe of a report, `now` being what was read after it.
  StallVerdict believed(const StallVerdict& reported, const std::optional<MemoryStalls>& now);

 private:
  std::optional<MemoryStalls> atFirst_;
  StallVerdict cameBefore_;
};

/// The verdict by the kernel's 10-second averages, for a single look.
StallVerdict stallsByAverage(const MemoryStalls& stalls);

/// What one look finds. Stalls count only on a machine short of memory: one container at its own limit
/// does not colour a machine with memory to spare.
MemoryPressure pressureOf(const StallVerdict& stalls, const MemoryAvailability& availability);

/// The level at a single look, without a past; nothing when the available memory is not known. Without
/// `stalls` the available memory alone decides.
std::optional<MemoryPressure> pressureAtOnce(const std::optional<MemoryStalls>& stalls,
                                             const std::optional<MemoryAvailability>& availability);

/// The level over time: up at once, down only after 15 seconds without a look as bad as the level held, and
/// once the machine is calm.
class PressureHysteresis {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  static constexpr std::chrono::seconds quietTime{15};

  PressureHysteresis(MemoryPressure level, TimePoint now);

  /// Takes in what a look found and returns the level to show. `someAverage10` is the kernel's average in
  /// percent; 0 where there is none.
  MemoryPressure update(MemoryPressure found, double someAverage10, TimePoint now);

  MemoryPressure level() const { return level_; }

 private:
  MemoryPressure level_;
  TimePoint lastWarning_;  // or worse
  TimePoint lastCritical_;
};

}  // namespace tarn
