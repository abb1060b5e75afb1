// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/bus_single_instance.hpp"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>
#include <utility>

#include "platform/linux/dbus/session_bus.hpp"

namespace tarn {
namespace {

constexpr int ownerTimeout = 2000;  // milliseconds

// D-Bus Specification, "org.freedesktop.DBus.RequestName".
constexpr uint nameFlagDoNotQueue = 4;
constexpr uint requestNameReplyExists = 3;

const QString applicationInterface = QStringLiteral("org.freedesktop.Application");

/// The path of an application's object: its name with "/" for "." and "_" for "-" (Desktop Entry
/// Specification, "D-Bus Activation").
QString objectPath() {
  QString path = QLatin1Char('/') + singleInstanceName();
  return path.replace(QLatin1Char('.'), QLatin1Char('/')).replace(QLatin1Char('-'), QLatin1Char('_'));
}

/// org.freedesktop.Application (Desktop Entry Specification, "D-Bus Activation"): Activate(a{sv}),
/// Open(as, a{sv}) and ActivateAction(s, av, a{sv}). All three activate Tarn, which opens no files.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  /// Owned by `object`.
  ApplicationAdaptor(QObject* object, std::function<void()> activated)
      : QDBusAbstractAdaptor(object), activated_(std::move(activated)) {}

 public Q_SLOTS:
  // Qt exports these methods on the bus under their C++ names.
  // NOLINTBEGIN(readability-identifier-naming)
  void Activate(const QVariantMap& platformData);
  void Open(const QStringList& addresses, const QVariantMap& platformData);
  void ActivateAction(const QString& action, const QVariantList& parameters, const QVariantMap& platformData);
  // NOLINTEND(readability-identifier-naming)

 private:
  std::function<void()> activated_;
};

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

}  // namespace

QString singleInstanceName() {
  return QStringLiteral(TARN_APPLICATION_ID);
}

BusSingleInstance::BusSingleInstance(QDBusConnection bus) : bus_(std::move(bus)) {}

bool BusSingleInstance::claim(std::function<void()> launchedAgain) {
  new ApplicationAdaptor(&object_, std::move(launchedAgain));
  if (!bus_.isConnected()) return true;
  registerObject();
  if (bus_.registerService(singleInstanceName())) return true;

  QDBusMessage activate = QDBusMessage::createMethodCall(singleInstanceName(), objectPath(),
                                                         applicationInterface, QStringLiteral("Activate"));
  activate << QVariantMap();
  const QDBusMessage reply = bus_.call(activate, QDBus::Block, ownerTimeout);
  // This process continues if the owner does not answer: otherwise the user has no working Tarn.
  return reply.type() == QDBusMessage::ErrorMessage;
}

void BusSingleInstance::claimAgain(const QDBusConnection& bus, std::function<void()> superseded) {
  bus_ = bus;
  registerObject();
  // QDBusConnection::registerService() would block.
  QDBusMessage request =
      QDBusMessage::createMethodCall(busService, busPath, busService, QStringLiteral("RequestName"));
  request << singleInstanceName() << nameFlagDoNotQueue;
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(request), &object_);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &object_,
                   [this, watcher, superseded = std::move(superseded)] {
                     watcher->deleteLater();
                     const QDBusPendingReply<uint> reply = *watcher;
                     if (reply.isValid() && reply.value() == requestNameReplyExists) pingOwner(superseded);
                   });
}

// Called before the name is requested: a process that sees the name may call the object immediately.
void BusSingleInstance::registerObject() {
  bus_.registerObject(objectPath(), &object_);
}

void BusSingleInstance::pingOwner(const std::function<void()>& superseded) {
  const QDBusMessage ping =
      QDBusMessage::createMethodCall(singleInstanceName(), objectPath(),
                                     QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(ping, ownerTimeout), &object_);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &object_, [watcher, superseded] {
    watcher->deleteLater();
    if (!watcher->isError()) superseded();
  });
}

}  // namespace tarn

#include "bus_single_instance.moc"
