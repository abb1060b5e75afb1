// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <functional>
#include <optional>

namespace tarn {

/// Where a popover goes. All rectangles are in screen coordinates.
struct ScreenArea {
  QRect whole;
  QRect available;  ///< without panels
};

/// What a compositor tells of where a window of ours goes.
struct CompositorPlace {
  ScreenArea screen;
  QPoint pointer;  ///< its position, on that screen
};

/// How a compositor that alone places windows is asked to place ours, once it shows it; both empty where none
/// is to be asked. Main thread.
struct CompositorPlacement {
  /// Where the pointer is; nothing while the compositor does not know the window. May move the window there.
  std::function<std::optional<CompositorPlace>()> locate;
  /// Moves the window's upper left corner.
  std::function<void(const QPoint& corner)> moveTo;
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
