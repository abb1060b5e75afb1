// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPoint>
#include <QTimer>
#include <functional>
#include <optional>
#include <utility>

#include "ui/popover/popover_placement.hpp"

namespace tarn {

/// The place of an open window where only the compositor can tell it and change it. Main thread.
class CompositorSeat {
 public:
  /// Calls `found` each time that the compositor has come to know the window.
  explicit CompositorSeat(std::function<void()> found);

  /// Whom to ask from now on; nobody where there is nothing to ask.
  void setCompositor(CompositorPlacement compositor) { compositor_ = std::move(compositor); }

  /// The window has just been shown: asks again and again until the compositor knows it. The window stays
  /// where it is if that never happens.
  void seek();

  /// The window is gone: asks no more.
  void leave() { timer_.stop(); }

  /// Where the window is; absent until it is known.
  const std::optional<CompositorPlace>& place() const { return place_; }

  /// Has the window moved to this corner, unless it was told so before.
  void moveTo(QPoint corner);

 private:
  void ask();

  std::function<void()> found_;
  CompositorPlacement compositor_;
  std::optional<CompositorPlace> place_;
  std::optional<QPoint> corner_;  ///< that the window was told to move to
  QTimer timer_;
  int attempts_ = 0;  ///< that are left
};

}  // namespace tarn
