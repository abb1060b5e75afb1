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
  const QDBusPendingCall answer = connection_.asyncCall(message);
  EXPECT_TRUE(eventually([&] { return answer.isFinished(); })) << method.toStdString();
  return answer.reply();
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

void BusClient::listen(const QString& path, const QString& interface, const QStringList& names) {
  for (const QString& name : names) {
    EXPECT_TRUE(connection_.connect(service_, path, interface, name, this, SLOT(note(QDBusMessage))));
  }
}

QList<QDBusMessage> BusClient::takeSignals() {
  // The bus keeps the order, so whatever was sent before the answer to this is here by then.
  call(QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
  QCoreApplication::processEvents();
  return std::exchange(noted_, {});
}

QStringList BusClient::takeSignalNames() {
  QStringList names;
  for (const QDBusMessage& signal : takeSignals()) names << signal.member();
  names.sort();
  return names;
}

void BusClient::note(const QDBusMessage& message) {
  noted_ << message;
}

}  // namespace tarn::test
