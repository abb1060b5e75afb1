// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QObject>
#include <chrono>

#include "platform/linux/dbus/bus_object.hpp"

namespace tarn {

/// The item's menu, "Open" and "Quit", which the panel draws: an object with the interface
/// com.canonical.dbusmenu, version 3 (described in dbus-menu.xml of libdbusmenu). The menu never changes.
/// Main thread.
class DBusMenu final : public QObject {
  Q_OBJECT

 public:
  /// Clicks on the same menu item within this time after the first one are ignored.
  static constexpr std::chrono::milliseconds clickInterval{50};

  /// Registers the menu at itemMenuPath() of `bus` until it is destroyed.
  explicit DBusMenu(const QDBusConnection& bus, QObject* parent = nullptr);

 Q_SIGNALS:
  /// The menu item was clicked. Emitted from the event loop, after the reply to the panel was sent.
  void openClicked();
  void quitClicked();

  /// As BusObject::burstEnded().
  void burstEnded();

  /// A click arrived by D-Bus; its handler runs from the event loop.
  void clickReceived(int id, QPrivateSignal);

 private:
  BusInterface interface();
  bool handleEvent(int id, const QString& event);
  void emitClicked(int id);

  int lastClicked_ = 0;
  QDeadlineTimer nextClick_{0};  ///< when it has expired, lastClicked_ may be clicked again
  BusObject object_;
};

}  // namespace tarn
