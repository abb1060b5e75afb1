// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPoint>
#include <QRect>
#include <optional>
#include <vector>

struct xcb_connection_t;

namespace tarn {

/// A QScreen, reduced to what the conversion from X11 pixels needs. Qt keeps the upper left corner of a
/// screen where X11 has it and divides all distances from that corner by `scale`.
struct ScreenScale {
  QRect geometry;      ///< QScreen::geometry()
  double scale = 1.0;  ///< QScreen::devicePixelRatio()
};

/// What the X server reports when the item is clicked. Positions are in Qt's screen coordinates.
struct X11ClickState {
  bool hasCompositor = false;               ///< translucent windows are blended with what lies below them
  std::optional<QPoint> pointer;            ///< nullopt when the pointer is on none of the screens
  std::optional<QRect> windowUnderPointer;  ///< the child of the root window that the pointer is on, if any
};

/// The screens of the running QGuiApplication.
std::vector<ScreenScale> screenScales();

/// Asks for all of X11ClickState in two round trips: the requests of each are sent together before the first
/// reply is awaited. Blocks without timeout, as Qt itself does on its connection, for which this is meant.
/// What the server does not answer stays absent. Main thread.
X11ClickState queryX11ClickState(xcb_connection_t* connection, const std::vector<ScreenScale>& screens);

}  // namespace tarn
