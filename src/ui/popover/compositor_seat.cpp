// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/compositor_seat.hpp"

#include <chrono>
#include <utility>

namespace tarn {

namespace {

// A compositor knows a window some milliseconds after the toolkit has shown it, and draws its next frame up
// to 16 later: by then it is to be in its place.
constexpr std::chrono::milliseconds interval{4};
constexpr int patience = 75;  ///< attempts

}  // namespace

CompositorSeat::CompositorSeat(std::unique_ptr<CompositorPlacement> compositor, std::function<void()> found)
    : compositor_(std::move(compositor)), found_(std::move(found)) {
  timer_.setSingleShot(true);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { ask(); });
}

void CompositorSeat::seek() {
  place_.reset();
  corner_.reset();
  if (!compositor_ || !isEnabled_) return;
  attempts_ = patience;
  timer_.start(interval);
}

void CompositorSeat::ask() {
  place_ = compositor_->locate();
  if (place_) {
    found_();
  } else if (--attempts_ > 0) {
    timer_.start(interval);
  }
}

void CompositorSeat::moveTo(QPoint corner) {
  if (std::exchange(corner_, corner) != corner) compositor_->moveTo(corner);
}

}  // namespace tarn
