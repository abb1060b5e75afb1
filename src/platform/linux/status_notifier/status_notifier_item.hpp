// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The item that panels show, and its properties: icons, title and tooltip text.

#pragma once

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QImage>
#include <QObject>
#include <QPoint>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <array>
#include <chrono>

#include "platform/linux/dbus/bus_object.hpp"
#include "platform/linux/status_notifier/watcher_registration.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// The icon heights in pixels that panels use: from small panels at normal density to large ones at double
/// density. A panel does not scale the icon if its height is listed.
inline constexpr std::array panelIconSizes = {16, 22, 24, 32, 48, 64};

/// The label's circle on a transparent square of `pixels`; wholly transparent for an unknown symbol name.
QImage circleIcon(const MenuBarLabel& label, int pixels);

/// The circle and the label's text beside it, `pixels` high and as wide as necessary. Without text it is the
/// circle only.
QImage labelledIcon(const MenuBarLabel& label, int pixels);

/// The item's title: "Tarn", and the label's text if there is one.
QString itemTitle(const MenuBarLabel& label);

/// The lines below the status sentence in the tooltip, as plain text: the memory figures, then the label's
/// text. May be empty.
QString itemToolTipText(const MenuBarLabel& label);

/// The value of the property IconPixmap: IconPixmaps in each of panelIconSizes.
QVariant itemIconPixmaps(const MenuBarLabel& label, HostKind kind);

/// All properties of org.kde.StatusNotifierItem for a panel of `kind`. Drawing takes longer than everything
/// else, so that `iconPixmaps` is passed in and can be reused.
QVariantMap itemProperties(const MenuBarLabel& label, HostKind kind, const QVariant& iconPixmaps);

/// The object path of the item's menu.
QString itemMenuPath();

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

  /// A click arrived by D-Bus; `activated` follows from the event loop.
  void clickReceived(QPoint position, QPrivateSignal);

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
