// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The rules for the memory-pressure level: thresholds and hysteresis. No I/O.
//
// The level depends on the time for which tasks stalled (waited for memory) and on the available memory.

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

/// Returns the level by the kernel's 10-second averages, for a single reading.
MemoryPressure stallLevel(const PsiStats& stats);

/// Returns the level for stalls of `stalls` (from `stallLevel`) and available memory. Stalls count only while
/// little memory is available: a container at its own limit does not change the level of a machine with
/// enough memory. Returns nullopt when `MemTotal` or `MemAvailable` is unknown. A machine without swap has no
/// free swap.
std::optional<MemoryPressure> pressureLevel(MemoryPressure stalls, const MemoryInfo& memory);

/// Returns the level by a single reading. Without `stats`, only the available memory is used.
std::optional<MemoryPressure> pressureLevel(const std::optional<PsiStats>& stats, const MemoryInfo& memory);

/// The reported level. It rises immediately. It falls when the current level was lower for 15 seconds and the
/// 10-second average of the "some" line is below 5 percent.
class PressureHysteresis {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  PressureHysteresis(MemoryPressure level, TimePoint now);

  /// Takes the current level at the time `now` and returns the level to report. `someAvg10` is in percent; 0
  /// where the kernel has no PSI.
  MemoryPressure update(MemoryPressure current, double someAvg10, TimePoint now);

  MemoryPressure level() const { return level_; }

 private:
  MemoryPressure level_;
  TimePoint lastWarning_;  ///< last time that the current level was warning or critical
  TimePoint lastCritical_;
};

}  // namespace tarn
