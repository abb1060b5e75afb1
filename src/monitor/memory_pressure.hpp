// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Notifications of memory pressure: the platform's source, and the monitor that delivers them on the main
// thread.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "monitor/concurrency.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// A set of memory-pressure levels that the system reports together: raw MemoryPressure values, or-ed.
using PressureFlags = std::uint32_t;

/// Returns the highest level in the set; normal when no known level is in it.
MemoryPressure memoryPressureFromFlags(PressureFlags flags);

/// The system's notifications of memory pressure.
///
/// Order of calls: construct, `resume` once, destroy. The destructor ends the task that the source runs on
/// the queue. The handler is not called after the destructor has returned.
class PressureSource {
 public:
  using Handler = std::function<void(PressureFlags)>;

  virtual ~PressureSource() = default;

  /// Starts delivering. The handler runs on `queue`, for every report of the system, also when the level is
  /// the same as before. Only this source uses the queue, and a task of the source may run until the source
  /// is destroyed. The queue outlives the source and is active when the source is destroyed.
  virtual void resume(TaskQueue& queue, Handler handler) = 0;
};

/// Delivers every notification of a source on the main thread, also when the level is the same as before.
/// Reports no level at the start. Created and destroyed on the main thread.
class MemoryPressureMonitor {
 public:
  using Handler = std::function<void(MemoryPressure)>;

  /// Only this monitor uses `queue`, which may be inactive. `mainLoop` outlives the monitor. `onChange` runs
  /// on the main thread, and not after the monitor is destroyed.
  MemoryPressureMonitor(std::unique_ptr<PressureSource> source, std::unique_ptr<TaskQueue> queue,
                        RunLoop& mainLoop, Handler onChange);

  /// Activates the queue first: the source's destructor may wait for its task on the queue.
  ~MemoryPressureMonitor();

  MemoryPressureMonitor(const MemoryPressureMonitor&) = delete;
  MemoryPressureMonitor& operator=(const MemoryPressureMonitor&) = delete;

  /// Activates the queue; idempotent.
  void activate();

 private:
  std::unique_ptr<TaskQueue> queue_;        ///< "com.tarn.pressure"; outlives the source, which runs on it
  std::unique_ptr<PressureSource> source_;  ///< its destructor ends its task
  std::shared_ptr<Handler> onChange_;       ///< posted tasks hold it weakly
};

}  // namespace tarn
