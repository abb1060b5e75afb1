// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPoint>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "ui/popover/popover_placement.hpp"

namespace tarn {

/// The place of an open window where only the compositor can tell it and change it. Main thread.
class CompositorSeat {
 public:
  /// Calls `found` each time that the compositor has come to know the window. `compositor` may be null.
  CompositorSeat(std::unique_ptr<CompositorPlacement> compositor, std::function<void()> found);

  /// While it is not enabled, nothing is asked.
  void setEnabled(bool isEnabled) { isEnabled_ = isEnabled; }

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

  std::unique_ptr<CompositorPlacement> compositor_;
  bool isEnabled_ = true;
  std::optional<CompositorPlace> place_;
  std::optional<QPoint> corner_;  ///< that the window was told to move to
  QTimer timer_;
  int attempts_ = 0;  ///< that are left
  std::function<void()> found_;
};

}  // namespace tarn
