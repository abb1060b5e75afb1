// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/memory_pressure.hpp"

#include <utility>

namespace tarn {

namespace {

bool contains(PressureFlags flags, MemoryPressure level) {
  return (flags & static_cast<PressureFlags>(level)) != 0;
}

}  // namespace

MemoryPressure memoryPressureFromFlags(PressureFlags flags) {
  if (contains(flags, MemoryPressure::critical)) return MemoryPressure::critical;
  if (contains(flags, MemoryPressure::warning)) return MemoryPressure::warning;
  return MemoryPressure::normal;
}

MemoryPressureMonitor::MemoryPressureMonitor(std::unique_ptr<PressureSource> source,
                                             std::unique_ptr<TaskQueue> queue, RunLoop& mainLoop,
                                             Handler onChange)
    : queue_(std::move(queue)),
      source_(std::move(source)),
      onChange_(std::make_shared<Handler>(std::move(onChange))) {
  // The weak reference is locked on the main thread only, where the monitor is destroyed: so the handler
  // cannot run after the monitor's destructor.
  source_->resume(*queue_, [&mainLoop, weak = std::weak_ptr(onChange_)](PressureFlags flags) {
    post(mainLoop, [weak, level = memoryPressureFromFlags(flags)] {
      if (const auto handler = weak.lock()) (*handler)(level);
    });
  });
}

MemoryPressureMonitor::~MemoryPressureMonitor() {
  activate();
}

void MemoryPressureMonitor::activate() {
  queue_->activate();
}

}  // namespace tarn
