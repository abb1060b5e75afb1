// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/bus_single_instance.hpp"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <utility>

namespace tarn {
namespace {

constexpr int patience = 2000;  ///< milliseconds that a second launch waits for the first Tarn's answer

// The bus's words for taking a name.
constexpr uint doNotQueue = 4;
constexpr uint nameHasAnotherOwner = 3;

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
  new ApplicationAdaptor(&object_, std::move(launchedAgain));
  if (!bus_.isConnected()) return true;
  present();
  if (bus_.registerService(singleInstanceName())) return true;

  QDBusMessage activate = QDBusMessage::createMethodCall(singleInstanceName(), objectPath(),
                                                         QStringLiteral("org.freedesktop.Application"),
                                                         QStringLiteral("Activate"));
  activate << QVariantMap();
  const QDBusMessage answer = bus_.call(activate, QDBus::Block, patience);
  // An owner that does not answer is no reason to leave the user without a Tarn.
  return answer.type() == QDBusMessage::ErrorMessage;
}

void BusSingleInstance::claimAgain(const QDBusConnection& bus, std::function<void()> superseded) {
  bus_ = bus;
  present();
  QDBusMessage request = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
  request << singleInstanceName() << doNotQueue;
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(request), &object_);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, &object_,
                   [this, answer, superseded = std::move(superseded)] {
                     answer->deleteLater();
                     const QDBusPendingReply<uint> reply = *answer;
                     if (reply.isValid() && reply.value() == nameHasAnotherOwner) askOwner(superseded);
                   });
}

// The object comes before the name: who finds the name may call at once.
void BusSingleInstance::present() {
  bus_.registerObject(objectPath(), &object_);
}

// An owner that does not answer is no reason to leave the user without a Tarn here, either.
void BusSingleInstance::askOwner(const std::function<void()>& superseded) {
  const QDBusMessage question =
      QDBusMessage::createMethodCall(singleInstanceName(), objectPath(),
                                     QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(question, patience), &object_);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, &object_, [answer, superseded] {
    answer->deleteLater();
    if (!answer->isError()) superseded();
  });
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
