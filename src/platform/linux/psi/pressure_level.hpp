// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The rules for the memory-pressure level: thresholds and hysteresis. No I/O.
//
// The level depends on how long tasks stalled (waited for memory) and on how much memory is available.

#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/psi/psi_file.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// Returns the minimum stall time in two seconds for a level: on the "full" line for critical, on the "some"
/// line for warning. `level` is not normal.
std::chrono::microseconds stallThreshold(MemoryPressure level);

/// Returns the PSI trigger for `stallThreshold(level)`: "some 200000 2000000", that is the line's name,
/// threshold and window in microseconds.
std::string psiTrigger(MemoryPressure level);

/// Returns the level for the stalls between two readings, without regard to the available memory: normal
/// when neither line reached its threshold, when no time passed, and when a total went backwards.
MemoryPressure stallLevel(const PsiStats& before, const PsiStats& after, std::chrono::nanoseconds elapsed);

/// The same by the kernel's 10-second averages: for a single reading.
MemoryPressure stallLevel(const PsiStats& stats);

/// Returns the level for stalls of `stalls` (from `stallLevel`) and available memory. Stalls are
/// ignored unless little memory is available: a container that stalls at its own limit does not change the
/// level of a machine with available memory. Returns nullopt when `MemTotal` or `MemAvailable` is unknown.
/// Without swap the free swap is 0.
std::optional<MemoryPressure> pressureLevel(MemoryPressure stalls, const MemoryInfo& memory);

/// Returns the level by a single reading. Without `stats` it depends on the available memory only.
std::optional<MemoryPressure> pressureLevel(const std::optional<PsiStats>& stats, const MemoryInfo& memory);

/// The level over time. It rises immediately. It falls when it was not found for 15 seconds and the 10-second
/// average of the "some" line is below 5 percent.
class PressureHysteresis {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  PressureHysteresis(MemoryPressure level, TimePoint now);

  /// Takes the level found at `now` and returns the level to report. `someAvg10` is in percent; 0 where the
  /// kernel has no PSI.
  MemoryPressure update(MemoryPressure found, double someAvg10, TimePoint now);

  MemoryPressure level() const { return level_; }

 private:
  MemoryPressure level_;
  TimePoint lastWarning_;  ///< last time that warning or critical was found
  TimePoint lastCritical_;
};

}  // namespace tarn
