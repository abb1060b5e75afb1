// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QObject>
#include <QPoint>
#include <QVariantMap>
#include <chrono>

#include "platform/linux/dbus/bus_object.hpp"
#include "platform/linux/status_notifier/watcher_registration.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// The item that panels show: the object "/StatusNotifierItem" with the interface org.kde.StatusNotifierItem
/// (StatusNotifierItem specification, freedesktop.org). WatcherRegistration announces it to panels. Main
/// thread.
class StatusNotifierItem final : public QObject {
  Q_OBJECT

 public:
  /// Clicks within this time after the last one are ignored.
  static constexpr std::chrono::milliseconds clickInterval{50};

  /// Registers the object on `bus` until it is destroyed.
  StatusNotifierItem(const QDBusConnection& bus, MenuBarLabel label, QObject* parent = nullptr);

  /// Shows `label`. Sends signals only for the properties that changed.
  void show(const MenuBarLabel& label);

  /// Adapts the properties to the panel that shows the item.
  void setHostKind(HostKind kind);

  const MenuBarLabel& label() const { return label_; }

 Q_SIGNALS:
  /// The item was clicked. `position` is as the panel sends it: some send screen coordinates, others do not.
  /// Emitted from the event loop, after the reply to the panel was sent.
  void activated(QPoint position);

  /// As BusObject::burstEnded().
  void burstEnded();

 private:
  BusInterface interface();
  void update(const QVariant& iconPixmaps);

  MenuBarLabel label_;
  HostKind kind_ = HostKind::plain;
  QVariantMap properties_;
  QDeadlineTimer nextClick_{0};  ///< when it has expired, the next click is accepted
  BusObject object_;
};

}  // namespace tarn
