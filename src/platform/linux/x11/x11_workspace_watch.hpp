// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <functional>

namespace tarn {

/// Tells when the user goes to another workspace, by the property in which the window manager says so: a
/// popup belongs to none and would come along. Needs the toolkit's own connection, which gets the screen's
/// property changes anyway. Main thread.
class X11WorkspaceWatch final : public QObject, private QAbstractNativeEventFilter {
 public:
  X11WorkspaceWatch(xcb_connection_t* connection, std::function<void()> switched);

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  std::function<void()> switched_;
  xcb_atom_t currentWorkspace_;
};

}  // namespace tarn
