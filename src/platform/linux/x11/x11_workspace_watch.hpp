// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <functional>

namespace tarn {

/// Calls a function when the user switches to another workspace: when the window manager changes
/// _NET_CURRENT_DESKTOP on the root window (Extended Window Manager Hints). Main thread.
class X11WorkspaceWatch final : public QObject, private QAbstractNativeEventFilter {
 public:
  /// `connection` is Qt's own, which selects property changes of the root window. One blocking round trip.
  X11WorkspaceWatch(xcb_connection_t* connection, std::function<void()> switched);

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  std::function<void()> switched_;
  xcb_atom_t currentDesktop_;
};

}  // namespace tarn
