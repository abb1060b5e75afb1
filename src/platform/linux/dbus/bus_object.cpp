// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/bus_object.hpp"

#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QStringList>
#include <utility>

namespace tarn {
namespace {

const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

constexpr unsigned burstCalls = 64;

QDBusMessage unknownProperty(const QDBusMessage& message) {
  return message.createErrorReply(QDBusError::UnknownProperty, QStringLiteral("No such property"));
}

QDBusMessage invalidArguments(const QDBusMessage& message) {
  return message.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("Invalid arguments"));
}

}  // namespace

BusObject::BusObject(QDBusConnection bus, QString path, BusInterface interface, QObject* parent)
    : QDBusVirtualObject(parent),
      bus_(std::move(bus)),
      path_(std::move(path)),
      interface_(std::move(interface)) {
  burstTimer_.setSingleShot(true);
  burstTimer_.setInterval(burstPause);
  connect(&burstTimer_, &QTimer::timeout, this, &BusObject::burstEnded);
  bus_.registerVirtualObject(path_, this);
}

BusObject::~BusObject() {
  bus_.unregisterObject(path_);
}

void BusObject::sendSignal(const QString& name, const QVariantList& arguments) {
  QDBusMessage message = QDBusMessage::createSignal(path_, interface_.name, name);
  message.setArguments(arguments);
  bus_.send(message);
}

void BusObject::sendPropertiesChanged(const QVariantMap& changed) {
  QDBusMessage message =
      QDBusMessage::createSignal(path_, propertiesInterface, QStringLiteral("PropertiesChanged"));
  message.setArguments({interface_.name, changed, QStringList()});
  bus_.send(message);
}

QString BusObject::introspect(const QString& path) const {
  if (path != path_) return {};
  QString properties;
  const QVariantMap values = interface_.properties();
  for (auto value = values.begin(); value != values.end(); ++value) {
    properties +=
        QStringLiteral("<property name=\"%1\" type=\"%2\" access=\"read\"/>\n")
            .arg(value.key(), QString::fromLatin1(QDBusMetaType::typeToSignature(value->metaType())));
  }
  return QStringLiteral("<interface name=\"%1\">\n%2%3</interface>\n")
      .arg(interface_.name, properties, interface_.introspection);
}

bool BusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  if (message.type() != QDBusMessage::MethodCallMessage) return false;
  const QString interface = message.interface();
  if (!interface.isEmpty() && interface != interface_.name && interface != propertiesInterface) return false;
  const QDBusMessage reply = interface == propertiesInterface ? callProperties(message) : callMethod(message);
  if (message.isReplyRequired()) connection.send(reply);
  if (++callCount_ % burstCalls == 0) burstTimer_.start();
  return true;
}

QDBusMessage BusObject::callMethod(const QDBusMessage& message) const {
  const auto method = interface_.methods.constFind(message.member());
  if (method == interface_.methods.constEnd()) {
    return message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("No such method"));
  }
  if (message.signature() != method->signature) return invalidArguments(message);
  const std::optional<QVariantList> results = method->call(message.arguments());
  return results ? message.createReply(*results) : invalidArguments(message);
}

QDBusMessage BusObject::callProperties(const QDBusMessage& message) const {
  const QVariantList arguments = message.arguments();
  const QString interface = arguments.value(0).toString();
  if (!interface.isEmpty() && interface != interface_.name) return invalidArguments(message);
  if (message.member() == u"GetAll" && message.signature() == u"s") {
    return message.createReply(QVariant(interface_.properties()));
  }
  if (message.member() == u"Get" && message.signature() == u"ss") {
    const QVariant value = interface_.properties().value(arguments.at(1).toString());
    if (!value.isValid()) return unknownProperty(message);
    return message.createReply(QVariant::fromValue(QDBusVariant(value)));
  }
  if (message.member() == u"Set" && message.signature() == u"ssv") {
    return message.createErrorReply(QDBusError::PropertyReadOnly, QStringLiteral("Read-only"));
  }
  return invalidArguments(message);
}

}  // namespace tarn
