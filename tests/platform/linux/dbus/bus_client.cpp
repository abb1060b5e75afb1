// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/bus_client.hpp"

#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <utility>

#include "support/event_loop.hpp"

namespace tarn::test {
namespace {

const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

}  // namespace

BusClient::BusClient(QDBusConnection connection, QString service)
    : connection_(std::move(connection)), service_(std::move(service)) {}

QDBusMessage BusClient::call(const QString& path, const QString& interface, const QString& method,
                             const QVariantList& arguments) {
  QDBusMessage message = QDBusMessage::createMethodCall(service_, path, interface, method);
  message.setArguments(arguments);
  const QDBusPendingCall pending = connection_.asyncCall(message);
  EXPECT_TRUE(eventually([&] { return pending.isFinished(); })) << method.toStdString();
  return pending.reply();
}

QVariant BusClient::property(const QString& path, const QString& interface, const QString& name) {
  const QDBusMessage reply = call(path, propertiesInterface, QStringLiteral("Get"), {interface, name});
  return reply.type() == QDBusMessage::ReplyMessage
             ? reply.arguments().value(0).value<QDBusVariant>().variant()
             : QVariant();
}

QVariantMap BusClient::properties(const QString& path, const QString& interface) {
  const QDBusMessage reply = call(path, propertiesInterface, QStringLiteral("GetAll"), {interface});
  return qdbus_cast<QVariantMap>(reply.arguments().value(0));
}

void BusClient::recordSignals(const QString& path, const QString& interface, const QStringList& names) {
  for (const QString& name : names) {
    EXPECT_TRUE(connection_.connect(service_, path, interface, name, this, SLOT(record(QDBusMessage))));
  }
}

QList<QDBusMessage> BusClient::takeSignals() {
  // The bus keeps messages in order: when the reply to this arrives, all signals sent before it have arrived.
  call(QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
  QCoreApplication::processEvents();
  return std::exchange(signals_, {});
}

QStringList BusClient::takeSignalNames() {
  QStringList names;
  for (const QDBusMessage& signal : takeSignals()) names << signal.member();
  names.sort();
  return names;
}

void BusClient::record(const QDBusMessage& message) {
  signals_ << message;
}

}  // namespace tarn::test
