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
#include "platform/linux/status_notifier/host_kind.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// The item that panels show, as the object "/StatusNotifierItem" on the bus. It is there for whoever asks;
/// telling a panel of it is NotifierHost's part. Main thread.
class StatusNotifierItem final : public QObject {
  Q_OBJECT

 public:
  /// No hand clicks twice within this time: more clicks are not passed on.
  static constexpr std::chrono::milliseconds clickInterval{50};

  /// Present on `bus` from now on, showing `label`.
  StatusNotifierItem(const QDBusConnection& bus, MenuBarLabel label, QObject* parent = nullptr);

  /// Shows `label`; signals what changed by it and nothing else.
  void show(const MenuBarLabel& label);

  /// Adapts to the panel that will show the item.
  void setHostKind(HostKind kind);

  /// The text of the item, whichever way the panel shows it.
  const MenuBarLabel& label() const { return label_; }

 Q_SIGNALS:
  /// A panel says that the item was clicked, at this place in its own coordinates. Sent from the event loop,
  /// after the panel has its answer.
  void activated(QPoint position);

  /// The same, at once: the panel still waits for its answer.
  void clicked(QPoint position, QPrivateSignal);

 private:
  BusInterface interface();
  void update(const QVariant& pictures);

  MenuBarLabel label_;
  HostKind kind_ = HostKind::plain;
  QVariantMap properties_;
  QDeadlineTimer nextClick_{0};  ///< expired when the next click may come
  BusObject object_;
};

}  // namespace tarn
