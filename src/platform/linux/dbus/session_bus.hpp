// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QLatin1String>
#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>

namespace tarn {

/// The bus itself, as a service on the bus (D-Bus Specification, "Message Bus Messages").
inline constexpr QLatin1String busService("org.freedesktop.DBus");
inline constexpr QLatin1String busPath("/org/freedesktop/DBus");

/// The address of the session bus: DBUS_SESSION_BUS_ADDRESS, else "bus" in XDG_RUNTIME_DIR. Empty when
/// neither is set, and for "autolaunch:", which would make each connection attempt start a new bus.
QString sessionBusAddress();

/// A connection to the session bus that is replaced when the bus is restarted: while it is lost, the same
/// address is tried at intervals. No timer runs while the connection works. All SessionBus objects with the
/// same address share one replacement connection. Main thread.
class SessionBus final : public QObject {
  Q_OBJECT

 public:
  /// Starts with `connection`, which may be disconnected. An empty `address` disables reconnecting.
  SessionBus(QDBusConnection connection, QString address, QObject* parent = nullptr);

  /// Other owners of the connection can continue to use it.
  ~SessionBus() override;
  Q_DISABLE_COPY_MOVE(SessionBus)

  /// The current connection; while there is none, the previous one.
  const QDBusConnection& connection() const { return connection_; }

  /// The time between attempts to reconnect; takes effect at the next loss of the connection.
  void setInterval(std::chrono::milliseconds interval) { retry_.setInterval(interval); }

 Q_SIGNALS:
  /// connection() was replaced. Names, objects and matches have to be registered on it again.
  void appeared();

 private Q_SLOTS:
  void disconnected();

 private:
  void watchDisconnection();
  void reconnect();

  QDBusConnection connection_;
  QString address_;
  QTimer retry_;
  QString connectionName_;  ///< name of the connection that this object made; empty for the constructor's
                            ///< connection
  int reconnects_ = 0;
};

/// Follows the owner of one bus name. Never blocks. Main thread.
class BusNameWatcher final : public QObject {
  Q_OBJECT

 public:
  /// Asks for the current owner of `name` and subscribes to changes. The first owner is reported by
  /// ownerChanged() like each later one.
  BusNameWatcher(const QDBusConnection& bus, QString name, QObject* parent = nullptr);

  /// The unique name of the owner (":1.42"). Empty when there is no owner, or no reply yet.
  const QString& owner() const { return owner_; }

 Q_SIGNALS:
  /// `owner` is as owner() returns it.
  void ownerChanged(const QString& owner);

 private Q_SLOTS:
  void nameOwnerChanged(const QDBusMessage& message);
  void disconnected();

 private:
  void setOwner(const QString& owner);

  QString name_;
  QString owner_;
  bool hasSignal_ = false;  ///< NameOwnerChanged arrived, so the reply to GetNameOwner may be outdated
};

}  // namespace tarn
