// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/bus_name.hpp"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <utility>

namespace tarn {
namespace {

const QString busService = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");

}  // namespace

BusName::BusName(const QDBusConnection& bus, QString name, QObject* parent)
    : QObject(parent), name_(std::move(name)) {
  if (!bus.isConnected()) return;
  // A sender in the subscription would make the toolkit look up its owner there and then, and wait for the
  // answer; who sent a signal is checked when it arrives instead. The subscription comes before the question,
  // so no change falls between them.
  QDBusConnection connection = bus;
  connection.connect(QString(), busPath, busService, QStringLiteral("NameOwnerChanged"), {name_},
                     QStringLiteral("sss"), this, SLOT(nameOwnerChanged(QDBusMessage)));
  connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                     QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                     SLOT(disconnected()));
  QDBusMessage question =
      QDBusMessage::createMethodCall(busService, busPath, busService, QStringLiteral("GetNameOwner"));
  question.setArguments({name_});
  auto* answer = new QDBusPendingCallWatcher(connection.asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    answer->deleteLater();
    const QDBusPendingReply<QString> reply = *answer;
    if (!toldByTheBus_ && reply.isValid()) setOwner(reply.value());
  });
}

void BusName::nameOwnerChanged(const QDBusMessage& message) {
  const QVariantList arguments = message.arguments();
  if (message.service() != busService || arguments.size() != 3 || arguments.at(0).toString() != name_) return;
  toldByTheBus_ = true;
  setOwner(arguments.at(2).toString());
}

void BusName::disconnected() {
  setOwner(QString());
}

void BusName::setOwner(const QString& owner) {
  if (owner == owner_) return;
  owner_ = owner;
  Q_EMIT ownerChanged(owner_);
}

}  // namespace tarn
