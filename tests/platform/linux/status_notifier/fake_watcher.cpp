// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/fake_watcher.hpp"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <utility>

namespace tarn::test {
namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

}  // namespace

FakeWatcher::FakeWatcher(QDBusConnection connection, bool hasHost, WatcherReplies replies)
    : FakeService(std::move(connection), watcherName, watcherPath), hasHost_(hasHost), replies_(replies) {}

void FakeWatcher::setHasHost(bool hasHost) {
  hasHost_ = hasHost;
  sendSignal(hasHost ? QStringLiteral("StatusNotifierHostRegistered")
                     : QStringLiteral("StatusNotifierHostUnregistered"));
}

void FakeWatcher::sendSignal(const QString& name, const QVariantList& arguments) {
  QDBusMessage signal = QDBusMessage::createSignal(watcherPath, watcherName, name);
  signal.setArguments(arguments);
  connection().send(signal);
}

bool FakeWatcher::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  const bool registers = message.member() == u"RegisterStatusNotifierItem";
  if (registers) {
    items_ << message.arguments().value(0).toString();
  } else {
    ++hostQueries_;
  }
  const QDBusMessage reply =
      registers ? message.createReply() : message.createReply(QVariant::fromValue(QDBusVariant(hasHost_)));
  const QDBusMessage error = message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("No"));
  switch (replies_) {
    case WatcherReplies::correct:
      connection.send(reply);
      break;
    case WatcherReplies::errors:
      connection.send(error);
      break;
    case WatcherReplies::registrationErrors:
      connection.send(registers ? error : reply);
      break;
    case WatcherReplies::malformed:
      connection.send(message.createReply({QStringLiteral("malformed"), QByteArray(100000, 'x'), 7}));
      break;
    case WatcherReplies::none:
      break;
  }
  return true;
}

}  // namespace tarn::test
