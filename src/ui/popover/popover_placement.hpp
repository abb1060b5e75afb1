// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

namespace tarn {

/// A screen, in screen coordinates.
struct ScreenArea {
  QRect whole;
  QRect available;  ///< without panels
};

/// The pointer and the screen that it is on, as a compositor reports them.
struct CompositorPlace {
  ScreenArea screen;
  QPoint pointer;  ///< in screen coordinates
};

/// Places this process's window through a compositor-specific protocol. Wayland itself has no request for
/// this. Main thread.
class CompositorPlacement {
 public:
  virtual ~CompositorPlacement() = default;

  /// Where the pointer is; nullopt while the compositor does not list the window. May center the window
  /// on the pointer.
  virtual std::optional<CompositorPlace> locate() = 0;

  /// Moves the window's upper left corner.
  virtual void moveTo(const QPoint& corner) = 0;
};

/// The screen without the panel whose window is `panel`, for panels that reserve no space or whose reserved
/// space the window system does not report. Returns `screen` unchanged when the window cannot be a panel.
ScreenArea besidePanel(const ScreenArea& screen, const QRect& panel);

/// Whether the position of a click, as a host reports it, can be correct: it is on the screen and near an
/// edge, where panels are.
bool isPlausibleAnchor(const QPoint& position, const ScreenArea& screen);

/// The frame of a popover of `size` beside the menu-bar item at `anchor`: next to the screen edge nearest to
/// the anchor, centred on the anchor along that edge, and inside the available area. Without an anchor it is
/// in the top right corner.
QRect popoverFrame(const std::optional<QPoint>& anchor, const QSize& size, const ScreenArea& screen);

/// The largest height of a popover on the screen.
int popoverHeightLimit(const ScreenArea& screen);

/// Finds and moves an open window through a compositor. Main thread.
class CompositorConnection {
 public:
  /// Calls `located` whenever the compositor has reported the pointer's place. `placement` may be null.
  CompositorConnection(std::unique_ptr<CompositorPlacement> placement, std::function<void()> located);

  /// While disabled, no requests are sent to the compositor.
  void setEnabled(bool isEnabled) { isEnabled_ = isEnabled; }

  /// Call when the window was shown. Asks the compositor every 4 ms until it lists the window, up to 75
  /// times.
  void startLocating();

  /// Call when the window was closed.
  void stopLocating() { timer_.stop(); }

  /// The last reported place; nullopt until the compositor has reported one.
  const std::optional<CompositorPlace>& place() const { return place_; }

  /// Moves the window's upper left corner to `corner`, unless that was the last request.
  void moveTo(QPoint corner);

 private:
  void locate();

  std::unique_ptr<CompositorPlacement> placement_;
  bool isEnabled_ = true;
  std::optional<CompositorPlace> place_;
  std::optional<QPoint> requestedCorner_;
  QTimer timer_;
  int attemptsLeft_ = 0;
  std::function<void()> located_;
};

}  // namespace tarn
