// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/watcher_registration.hpp"

#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QFile>
#include <QFileInfo>
#include <limits>
#include <utility>

namespace tarn {
namespace {

// org.kde.StatusNotifierWatcher:
//   RegisterStatusNotifierItem(s service)
//   property b IsStatusNotifierHostRegistered
//   signals StatusNotifierHostRegistered, StatusNotifierHostUnregistered
const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

// A watcher that is starting may reply late. Nothing waits for the reply, so there is no timeout.
constexpr int noTimeout = std::numeric_limits<int>::max();

QDBusMessage watcherCall(const QString& owner, const QString& interface, const QString& method,
                         const QVariantList& arguments) {
  QDBusMessage message = QDBusMessage::createMethodCall(owner, watcherPath, interface, method);
  message.setArguments(arguments);
  message.setAutoStartService(false);
  return message;
}

}  // namespace

HostKind hostKind(const QString& programName) {
  if (programName == u"gnome-shell") return HostKind::ayatanaLabel;  // with the AppIndicator extension
  const bool keepsProportions =
      programName == u"waybar" || programName == u"mate-panel" || programName == u"notification-area-applet";
  return keepsProportions ? HostKind::wideIcons : HostKind::plain;
}

QString runningProgramName(unsigned pid) {
  const QString process = QStringLiteral("/proc/%1/").arg(pid);
  QString executable = QFile::symLinkTarget(process + QStringLiteral("exe"));
  if (!executable.isEmpty()) {
    // The kernel appends this (man 5 proc_pid_exe) when the panel was upgraded while it runs.
    const QString deleted = QStringLiteral(" (deleted)");
    if (executable.endsWith(deleted)) executable.chop(deleted.size());
    return QFileInfo(executable).fileName();
  }
  QFile comm(process + QStringLiteral("comm"));
  if (!comm.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(comm.readAll()).trimmed();
}

WatcherRegistration::WatcherRegistration(const QDBusConnection& bus, ProgramNameSource programName,
                                         QObject* parent)
    : QObject(parent), bus_(bus), programName_(std::move(programName)), watcher_(bus, watcherName) {
  connect(&watcher_, &BusNameWatcher::ownerChanged, this, &WatcherRegistration::watcherChanged);
  if (!bus_.isConnected()) return;
  for (const QString& signal :
       {QStringLiteral("StatusNotifierHostRegistered"), QStringLiteral("StatusNotifierHostUnregistered")}) {
    bus_.connect(QString(), watcherPath, watcherName, signal, this, SLOT(hostsChanged(QDBusMessage)));
  }
}

void WatcherRegistration::watcherChanged(const QString& owner) {
  callContext_.reset();
  isRegistered_ = hasHost_ = isHostQueryPending_ = isHostQueryOutdated_ = false;
  if (!owner.isEmpty()) {
    callContext_ = std::make_unique<QObject>();
    QDBusMessage pidCall = QDBusMessage::createMethodCall(busService, busPath, busService,
                                                          QStringLiteral("GetConnectionUnixProcessID"));
    pidCall.setArguments({owner});
    call(pidCall, [this](const QDBusMessage& reply) {
      const bool isValid = reply.type() == QDBusMessage::ReplyMessage && reply.signature() == u"u";
      Q_EMIT watcherFound(hostKind(isValid ? programName_(reply.arguments().at(0).toUInt()) : QString()));
      registerItem();
      queryHost();
    });
  }
  Q_EMIT changed();
}

void WatcherRegistration::registerItem() {
  // The unique name is accepted like a well-known one (org.kde.StatusNotifierItem-PID-ID), which would have
  // to be requested first.
  call(watcherCall(watcher_.owner(), watcherName, QStringLiteral("RegisterStatusNotifierItem"),
                   {bus_.baseService()}),
       [this](const QDBusMessage& reply) {
         isRegistered_ = reply.type() == QDBusMessage::ReplyMessage;
         Q_EMIT changed();
       });
}

void WatcherRegistration::queryHost() {
  if (isHostQueryPending_) {
    isHostQueryOutdated_ = true;
    return;
  }
  isHostQueryPending_ = true;
  call(watcherCall(watcher_.owner(), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                   {watcherName, QStringLiteral("IsStatusNotifierHostRegistered")}),
       [this](const QDBusMessage& reply) {
         const bool isValid = reply.type() == QDBusMessage::ReplyMessage && reply.signature() == u"v";
         const QVariant value =
             isValid ? reply.arguments().at(0).value<QDBusVariant>().variant() : QVariant();
         hasHost_ = value.metaType() == QMetaType::fromType<bool>() && value.toBool();
         isHostQueryPending_ = false;
         if (std::exchange(isHostQueryOutdated_, false)) queryHost();
         Q_EMIT changed();
       });
}

void WatcherRegistration::hostsChanged(const QDBusMessage& message) {
  if (hasWatcher() && message.service() == watcher_.owner()) queryHost();
}

void WatcherRegistration::call(const QDBusMessage& message, const ReplyHandler& handler) {
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, noTimeout), callContext_.get());
  connect(watcher, &QDBusPendingCallWatcher::finished, callContext_.get(), [watcher, handler] {
    watcher->deleteLater();
    handler(watcher->reply());
  });
}

}  // namespace tarn
