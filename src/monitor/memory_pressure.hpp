// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <memory>

#include "monitor/pressure_source.hpp"
#include "monitor/run_loop.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// The level that a set of reported flags stands for: the gravest that is in it, normal when none is known.
MemoryPressure memoryPressureFromFlags(PressureFlags flags);

/// Delivers the system's memory-pressure notifications on the main thread, each one, also when the level is
/// the same as before. Monitors from construction to destruction, both on the main thread; reports no level
/// at the start.
class MemoryPressureMonitor {
 public:
  using Handler = std::function<void(MemoryPressure)>;

  /// `queue` serves this monitor alone; `mainLoop` outlives it. `onChange` runs on the main thread, and no
  /// more once the monitor is gone.
  MemoryPressureMonitor(std::unique_ptr<PressureSource> source, std::unique_ptr<TaskQueue> queue,
                        RunLoop& mainLoop, Handler onChange);
  ~MemoryPressureMonitor();

  MemoryPressureMonitor(const MemoryPressureMonitor&) = delete;
  MemoryPressureMonitor& operator=(const MemoryPressureMonitor&) = delete;

 private:
  std::unique_ptr<TaskQueue> queue_;        ///< "com.tarn.pressure"; outlives the source that occupies it
  std::unique_ptr<PressureSource> source_;  ///< cancels when it is destroyed
  std::shared_ptr<Handler> onChange_;       ///< deliveries on their way hold it weakly
};

}  // namespace tarn
