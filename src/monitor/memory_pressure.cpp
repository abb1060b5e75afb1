// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/memory_pressure.hpp"

#include <utility>

#include "monitor/hand_over.hpp"

namespace tarn {

namespace {

bool holds(PressureFlags flags, MemoryPressure level) {
  return (flags & static_cast<PressureFlags>(level)) != 0;
}

}  // namespace

MemoryPressure memoryPressureFromFlags(PressureFlags flags) {
  if (holds(flags, MemoryPressure::critical)) return MemoryPressure::critical;
  if (holds(flags, MemoryPressure::warning)) return MemoryPressure::warning;
  return MemoryPressure::normal;
}

MemoryPressureMonitor::MemoryPressureMonitor(std::unique_ptr<PressureSource> source,
                                             std::unique_ptr<TaskQueue> queue, RunLoop& mainLoop,
                                             Handler onChange)
    : queue_(std::move(queue)),
      source_(std::move(source)),
      onChange_(std::make_shared<Handler>(std::move(onChange))) {
  // The queue's thread only passes the weak reference on; whether the monitor lives is asked on the main
  // thread, where it also dies, so a delivery can never overtake its destruction.
  source_->resume(*queue_, [&mainLoop, weak = std::weak_ptr(onChange_)](PressureFlags flags) {
    handOver(mainLoop, [weak, level = memoryPressureFromFlags(flags)] {
      if (const auto handler = weak.lock()) (*handler)(level);
    });
  });
}

MemoryPressureMonitor::~MemoryPressureMonitor() = default;

}  // namespace tarn
