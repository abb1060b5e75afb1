// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <memory>

#include "monitor/memory_pressure.hpp"

namespace tarn::macos {

/// libdispatch's functions on opaque objects. The caller releases the objects that it creates.
struct DispatchFunctions {
  void* (*createQueue)(const char* label);  ///< serial, QOS_CLASS_UTILITY
  /// A suspended DISPATCH_SOURCE_TYPE_MEMORYPRESSURE for these levels; null when it cannot be created.
  void* (*createPressureSource)(unsigned long levels, void* queue);
  void (*setHandler)(void* source, void* context, void (*handler)(void* context));
  void (*resume)(void* source);
  unsigned long (*pendingLevels)(void* source);  ///< may be called only in the handler
  void (*cancel)(void* source);                  ///< no call of the handler starts after this call
  void (*waitFor)(void* queue);                  ///< returns when the tasks on the queue have ended
  void (*release)(void* object);
};

/// The kernel's memory pressure events, through a dispatch source on a separate dispatch queue.
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
  TaskQueue* queue_ = nullptr;        ///< where the handler runs; null until resume()
  std::shared_ptr<Handler> handler_;  ///< queued deliveries hold a weak reference
  void* dispatchQueue_ = nullptr;
  void* source_ = nullptr;
};

}  // namespace tarn::macos
