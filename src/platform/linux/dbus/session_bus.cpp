// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/session_bus.hpp"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <utility>

namespace tarn {
namespace {

/// Calls `slot` of `receiver` when libdbus reports the loss of the connection, as a signal that it sends to
/// itself. Returns whether the subscription was made.
bool connectDisconnected(QDBusConnection connection, QObject* receiver, const char* slot) {
  return connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                            QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                            receiver, slot);
}

}  // namespace

QString sessionBusAddress() {
  QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
  if (address.startsWith(u"autolaunch:")) return {};
  if (!address.isEmpty()) return address;
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  return runtime.isEmpty() ? QString() : QStringLiteral("unix:path=%1/bus").arg(runtime);
}

SessionBus::SessionBus(QDBusConnection connection, QString address, QObject* parent)
    : QObject(parent), connection_(std::move(connection)), address_(std::move(address)) {
  retry_.setInterval(std::chrono::seconds(3));
  connect(&retry_, &QTimer::timeout, this, &SessionBus::reconnect);
  watchDisconnection();
}

SessionBus::~SessionBus() {
  if (!connectionName_.isEmpty()) QDBusConnection::disconnectFromBus(connectionName_);
}

void SessionBus::watchDisconnection() {
  const bool isWatched =
      connection_.isConnected() && connectDisconnected(connection_, this, SLOT(disconnected()));
  // The connection may have been lost before the subscription was made.
  if (!isWatched || !connection_.isConnected()) disconnected();
}

void SessionBus::disconnected() {
  if (connection_.isConnected() || address_.isEmpty()) return;
  retry_.start();
}

void SessionBus::reconnect() {
  // Qt never reconnects a connection that was lost; a new one needs a new name. The name contains the address
  // and the count, so that all objects that follow this address use the same connection.
  const QString name = QStringLiteral("tarn %1 %2").arg(reconnects_ + 1).arg(address_);
  const QDBusConnection connection = QDBusConnection::connectToBus(address_, name);
  if (!connection.isConnected()) {
    QDBusConnection::disconnectFromBus(name);
    return;
  }
  retry_.stop();
  if (!connectionName_.isEmpty()) QDBusConnection::disconnectFromBus(connectionName_);
  connectionName_ = name;
  ++reconnects_;
  connection_ = connection;
  watchDisconnection();
  if (!retry_.isActive()) Q_EMIT appeared();
}

BusNameWatcher::BusNameWatcher(const QDBusConnection& bus, QString name, QObject* parent)
    : QObject(parent), name_(std::move(name)) {
  if (!bus.isConnected()) return;
  // If the subscription named a sender, Qt would request the sender's owner and block until the reply. The
  // sender is checked in nameOwnerChanged() instead. The subscription is made before GetNameOwner is called,
  // so that no change between the two is lost.
  QDBusConnection connection = bus;
  connection.connect(QString(), busPath, busService, QStringLiteral("NameOwnerChanged"), {name_},
                     QStringLiteral("sss"), this, SLOT(nameOwnerChanged(QDBusMessage)));
  connectDisconnected(connection, this, SLOT(disconnected()));
  QDBusMessage call =
      QDBusMessage::createMethodCall(busService, busPath, busService, QStringLiteral("GetNameOwner"));
  call.setArguments({name_});
  auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    watcher->deleteLater();
    const QDBusPendingReply<QString> reply = *watcher;
    if (!hasSignal_ && reply.isValid()) setOwner(reply.value());
  });
}

// NameOwnerChanged(name, old owner, new owner)
void BusNameWatcher::nameOwnerChanged(const QDBusMessage& message) {
  const QVariantList arguments = message.arguments();
  if (message.service() != busService || arguments.size() != 3 || arguments.at(0).toString() != name_) return;
  hasSignal_ = true;
  setOwner(arguments.at(2).toString());
}

void BusNameWatcher::disconnected() {
  setOwner(QString());
}

void BusNameWatcher::setOwner(const QString& owner) {
  if (owner == owner_) return;
  owner_ = owner;
  Q_EMIT ownerChanged(owner_);
}

}  // namespace tarn
