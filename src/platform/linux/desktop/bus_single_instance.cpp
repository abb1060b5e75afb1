// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/desktop/bus_single_instance.hpp"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <utility>

namespace tarn {
namespace {

constexpr int patience = 2000;  ///< milliseconds that a second launch waits for the first Tarn's answer

/// Where desktops look for the object of an application: its name, written as a path.
QString objectPath() {
  QString path = QLatin1Char('/') + singleInstanceName();
  return path.replace(QLatin1Char('.'), QLatin1Char('/')).replace(QLatin1Char('-'), QLatin1Char('_'));
}

}  // namespace

QString singleInstanceName() {
  return QStringLiteral(TARN_APPLICATION_ID);
}

BusSingleInstance::BusSingleInstance(QDBusConnection bus) : bus_(std::move(bus)) {}

bool BusSingleInstance::claim(std::function<void()> launchedAgain) {
  if (!bus_.isConnected()) return true;
  // The object comes before the name: who finds the name may call at once.
  new ApplicationAdaptor(&object_, std::move(launchedAgain));
  bus_.registerObject(objectPath(), &object_);
  if (bus_.registerService(singleInstanceName())) return true;

  QDBusMessage activate = QDBusMessage::createMethodCall(singleInstanceName(), objectPath(),
                                                         QStringLiteral("org.freedesktop.Application"),
                                                         QStringLiteral("Activate"));
  activate << QVariantMap();
  const QDBusMessage answer = bus_.call(activate, QDBus::Block, patience);
  // An owner that does not answer is no reason to leave the user without a Tarn.
  return answer.type() == QDBusMessage::ErrorMessage;
}

ApplicationAdaptor::ApplicationAdaptor(QObject* object, std::function<void()> activated)
    : QDBusAbstractAdaptor(object), activated_(std::move(activated)) {}

void ApplicationAdaptor::Activate(const QVariantMap& /*platformData*/) {
  activated_();
}

void ApplicationAdaptor::Open(const QStringList& /*addresses*/, const QVariantMap& platformData) {
  Activate(platformData);
}

void ApplicationAdaptor::ActivateAction(const QString& /*action*/, const QVariantList& /*parameters*/,
                                        const QVariantMap& platformData) {
  Activate(platformData);
}

}  // namespace tarn
