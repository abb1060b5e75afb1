// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <optional>

namespace tarn {

/// Where a popover goes. All rectangles are in screen coordinates.
struct ScreenArea {
  QRect whole;
  QRect available;  ///< without panels
};

/// The pointer and the screen that it is on, as a compositor reports them.
struct CompositorPlace {
  ScreenArea screen;
  QPoint pointer;  ///< in screen coordinates
};

/// Places this process's window through a compositor's own protocol, where Wayland clients cannot do it
/// themselves. Main thread.
class CompositorPlacement {
 public:
  virtual ~CompositorPlacement() = default;

  /// Where the pointer is; nothing while the compositor does not list the window. May move the window there.
  virtual std::optional<CompositorPlace> locate() = 0;

  /// Moves the window's upper left corner.
  virtual void moveTo(const QPoint& corner) = 0;
};

/// What is left of a screen beside a panel of which only the window is known: panels do not always reserve
/// their space, and window systems do not always tell it. A window that can be none leaves the screen as it
/// is.
ScreenArea besidePanel(const ScreenArea& screen, const QRect& panel);

/// Whether a position that a host sent for a click can be one: on the screen, and near an edge, where panels
/// are.
bool isPlausibleAnchor(const QPoint& position, const ScreenArea& screen);

/// The frame of a popover of `size` beside the menu-bar item at `anchor`: next to the screen edge that the
/// anchor is nearest to, centred on it along that edge, wholly inside the available area. Without an anchor
/// it is the top trailing corner.
QRect popoverFrame(const std::optional<QPoint>& anchor, const QSize& size, const ScreenArea& screen);

/// The most height that a popover may take there.
int popoverHeightLimit(const ScreenArea& screen);

}  // namespace tarn
