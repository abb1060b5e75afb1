// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <functional>

#include "monitor/task_queue.hpp"

namespace tarn {

/// A set of memory-pressure levels that the system reports together, as raw MemoryPressure values combined.
using PressureFlags = std::uint32_t;

/// The system's notifications of memory pressure.
///
/// Order of calls: construct, `resume` once, destroy. Destruction cancels: it ends whatever the source has
/// running on the queue, and the handler is not called again once it returns.
class PressureSource {
 public:
  using Handler = std::function<void(PressureFlags)>;

  virtual ~PressureSource() = default;

  /// Starts delivering. The handler runs on `queue`, which serves this source alone and outlives it; the
  /// source may occupy it until it is destroyed. Called for every report of the system, also when the level
  /// is the same as before.
  virtual void resume(TaskQueue& queue, Handler handler) = 0;
};

}  // namespace tarn
