// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/session_bus.hpp"

#include <utility>

namespace tarn {

QString sessionBusAddress() {
  QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
  // That is no place, but asks the library to start a bus of its own, and would at each attempt.
  if (address.startsWith(u"autolaunch:")) return {};
  if (!address.isEmpty()) return address;
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  return runtime.isEmpty() ? QString() : QStringLiteral("unix:path=%1/bus").arg(runtime);
}

SessionBus::SessionBus(QDBusConnection connection, QString address, QObject* parent)
    : QObject(parent), connection_(std::move(connection)), address_(std::move(address)) {
  retry_.setInterval(std::chrono::seconds(3));
  connect(&retry_, &QTimer::timeout, this, &SessionBus::look);
  follow();
}

SessionBus::~SessionBus() {
  if (!ownName_.isEmpty()) QDBusConnection::disconnectFromBus(ownName_);
}

void SessionBus::follow() {
  const bool watched = connection_.isConnected() &&
                       connection_.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                           QStringLiteral("org.freedesktop.DBus.Local"),
                                           QStringLiteral("Disconnected"), this, SLOT(disconnected()));
  // It may have gone while we were about to ask to be told.
  if (!watched || !connection_.isConnected()) disconnected();
}

void SessionBus::disconnected() {
  if (connection_.isConnected() || address_.isEmpty()) return;
  retry_.start();
}

void SessionBus::look() {
  // The library's own connection to the session bus does not come back; one of another name is another one.
  const QString name = QStringLiteral("tarn %1 %2").arg(connected_ + 1).arg(address_);
  const QDBusConnection connection = QDBusConnection::connectToBus(address_, name);
  if (!connection.isConnected()) {
    QDBusConnection::disconnectFromBus(name);
    return;
  }
  retry_.stop();
  if (!ownName_.isEmpty()) QDBusConnection::disconnectFromBus(ownName_);
  ownName_ = name;
  ++connected_;
  connection_ = connection;
  follow();
  if (!retry_.isActive()) Q_EMIT appeared();
}

}  // namespace tarn
