// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Queries and events on Qt's connection to the X server: the state at a click, and changes of the workspace.

#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <functional>
#include <optional>
#include <vector>

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

/// Requests all of X11ClickState in two round trips. Blocks without timeout: use it on Qt's connection, on
/// which Qt blocks the same way. Values without a reply keep their defaults. Main thread.
X11ClickState queryX11ClickState(xcb_connection_t* connection, const std::vector<ScreenScale>& screens);

/// Calls a function when the user switches to another workspace: when the window manager changes
/// _NET_CURRENT_DESKTOP on the root window (Extended Window Manager Hints). Main thread.
class X11WorkspaceWatch final : public QObject, private QAbstractNativeEventFilter {
 public:
  /// `connection` is Qt's connection, which selects property changes of the root window. One blocking round
  /// trip.
  X11WorkspaceWatch(xcb_connection_t* connection, std::function<void()> switched);

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  std::function<void()> switched_;
  xcb_atom_t currentDesktop_;
};

}  // namespace tarn
