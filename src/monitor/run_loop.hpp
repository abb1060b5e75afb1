// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <memory>

#include "monitor/task_queue.hpp"

namespace tarn {

/// A timer that fires until it is invalidated or destroyed.
class RepeatingTimer {
 public:
  virtual ~RepeatingTimer() = default;

  /// Stops it for good; harmless when repeated.
  virtual void invalidate() = 0;
};

/// The main thread's run loop: a task queue (`async`, from any thread) and timers (main thread).
class RunLoop : public TaskQueue {
 public:
  /// A timer that calls `block` on the main thread every `interval` seconds, for the first time one interval
  /// from now, also while a menu or popover tracks events.
  virtual std::unique_ptr<RepeatingTimer> repeatingTimer(double interval, std::function<void()> block) = 0;
};

}  // namespace tarn
