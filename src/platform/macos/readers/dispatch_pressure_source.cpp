// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/dispatch_pressure_source.hpp"

#include <atomic>
#include <utility>

namespace tarn::macos {

namespace {

// DISPATCH_MEMORYPRESSURE_NORMAL, _WARN and _CRITICAL: the return to normal is reported, too.
constexpr unsigned long allLevels = 1 | 2 | 4;

/// Waits until the tasks that are now in the queue have ended.
void drain(TaskQueue& queue) {
  const auto done = std::make_shared<std::atomic<bool>>(false);
  queue.async([done] {
    *done = true;
    done->notify_one();
  });
  done->wait(false);
}

}  // namespace

void DispatchPressureSource::resume(TaskQueue& queue, Handler handler) {
  queue_ = &queue;
  handler_ = std::make_shared<Handler>(std::move(handler));
  dispatchQueue_ = dispatch_.createQueue("com.tarn.pressure");
  source_ = dispatch_.createPressureSource(allLevels, dispatchQueue_);
  if (source_ == nullptr) return;
  dispatch_.setHandler(source_, this,
                       [](void* self) { static_cast<DispatchPressureSource*>(self)->deliver(); });
  dispatch_.resume(source_);
}

void DispatchPressureSource::deliver() {
  const auto levels = static_cast<PressureFlags>(dispatch_.pendingLevels(source_));
  queue_->async([weak = std::weak_ptr(handler_), levels] {
    if (const auto handler = weak.lock()) (*handler)(levels);
  });
}

DispatchPressureSource::~DispatchPressureSource() {
  if (source_ != nullptr) {
    dispatch_.cancel(source_);
    dispatch_.waitFor(dispatchQueue_);
    dispatch_.release(source_);
    handler_.reset();
    drain(*queue_);
  }
  if (dispatchQueue_ != nullptr) dispatch_.release(dispatchQueue_);
}

}  // namespace tarn::macos
