// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/watcher_registration.hpp"

#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <limits>
#include <utility>

namespace tarn {
namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

// A watcher that is busy starting may answer late, and a late answer is as good as an early one: nothing
// waits for it.
constexpr int noTimeout = std::numeric_limits<int>::max();

QDBusMessage watcherCall(const QString& owner, const QString& interface, const QString& method,
                         const QVariantList& arguments) {
  QDBusMessage message = QDBusMessage::createMethodCall(owner, watcherPath, interface, method);
  message.setArguments(arguments);
  message.setAutoStartService(false);
  return message;
}

}  // namespace

NotifierHost::NotifierHost(const QDBusConnection& bus, ProgramNameSource programName, QObject* parent)
    : QObject(parent), bus_(bus), programName_(std::move(programName)), watcher_(bus, watcherName) {
  connect(&watcher_, &BusName::ownerChanged, this, &NotifierHost::meet);
  if (!bus_.isConnected()) return;
  for (const QString& signal :
       {QStringLiteral("StatusNotifierHostRegistered"), QStringLiteral("StatusNotifierHostUnregistered")}) {
    bus_.connect(QString(), watcherPath, watcherName, signal, this, SLOT(panelsChanged(QDBusMessage)));
  }
}

void NotifierHost::meet(const QString& owner) {
  acquaintance_.reset();
  registered_ = hasPanel_ = asking_ = askAgain_ = false;
  if (!owner.isEmpty()) {
    acquaintance_ = std::make_unique<QObject>();
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetConnectionUnixProcessID"));
    question.setArguments({owner});
    // The panel reads the item as soon as it is registered, so what suits this panel is settled before.
    ask(question, [this](const QDBusMessage& answer) {
      const bool known = answer.type() == QDBusMessage::ReplyMessage && answer.signature() == u"u";
      Q_EMIT watcherFound(known ? programName_(answer.arguments().at(0).toUInt()) : QString());
      registerItem();
      askForPanel();
    });
  }
  Q_EMIT changed();
}

void NotifierHost::registerItem() {
  // The unique name is as good as one that says what it is, and need not be asked for.
  ask(watcherCall(watcher_.owner(), watcherName, QStringLiteral("RegisterStatusNotifierItem"),
                  {bus_.baseService()}),
      [this](const QDBusMessage& answer) {
        registered_ = answer.type() == QDBusMessage::ReplyMessage;
        Q_EMIT changed();
      });
}

void NotifierHost::askForPanel() {
  if (asking_) {
    askAgain_ = true;
    return;
  }
  asking_ = true;
  ask(watcherCall(watcher_.owner(), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                  {watcherName, QStringLiteral("IsStatusNotifierHostRegistered")}),
      [this](const QDBusMessage& answer) {
        const bool known = answer.type() == QDBusMessage::ReplyMessage && answer.signature() == u"v";
        const QVariant value = known ? answer.arguments().at(0).value<QDBusVariant>().variant() : QVariant();
        hasPanel_ = value.metaType() == QMetaType::fromType<bool>() && value.toBool();
        asking_ = false;
        if (std::exchange(askAgain_, false)) askForPanel();
        Q_EMIT changed();
      });
}

void NotifierHost::panelsChanged(const QDBusMessage& message) {
  if (hasWatcher() && message.service() == watcher_.owner()) askForPanel();
}

void NotifierHost::ask(const QDBusMessage& question, const Reply& reply) {
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(question, noTimeout), acquaintance_.get());
  connect(answer, &QDBusPendingCallWatcher::finished, acquaintance_.get(), [answer, reply] {
    answer->deleteLater();
    reply(answer->reply());
  });
}

}  // namespace tarn
