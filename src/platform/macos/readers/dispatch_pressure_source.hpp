// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <memory>

#include "monitor/memory_pressure.hpp"

namespace tarn::macos {

/// The system's dispatch functions. Objects are opaque; those made are to be released.
struct DispatchFunctions {
  void* (*createQueue)(const char* label);  ///< serial, for work that nobody waits for
  /// A source of memory-pressure events of these levels; suspended. Null when the system refuses.
  void* (*createPressureSource)(unsigned long levels, void* queue);
  void (*setHandler)(void* source, void* context, void (*handler)(void* context));
  void (*resume)(void* source);
  unsigned long (*pendingLevels)(void* source);  ///< in the handler only
  void (*cancel)(void* source);                  ///< no handler begins after this
  void (*waitFor)(void* queue);                  ///< until what runs on the queue has ended
  void (*release)(void* object);
};

/// The running system's; defined where the system is at hand.
const DispatchFunctions& dispatchFunctions();

/// The kernel's notifications of memory pressure, through a dispatch source on a queue of its own.
class DispatchPressureSource final : public PressureSource {
 public:
  explicit DispatchPressureSource(const DispatchFunctions& dispatch) : dispatch_(dispatch) {}
  ~DispatchPressureSource() override;

  DispatchPressureSource(const DispatchPressureSource&) = delete;
  DispatchPressureSource& operator=(const DispatchPressureSource&) = delete;

  void resume(TaskQueue& queue, Handler handler) override;

 private:
  void deliver();

  DispatchFunctions dispatch_;
  TaskQueue* queue_ = nullptr;        ///< the monitor's; absent until resumed
  std::shared_ptr<Handler> handler_;  ///< deliveries on their way hold it weakly
  void* dispatchQueue_ = nullptr;
  void* source_ = nullptr;
};

}  // namespace tarn::macos
