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
    : connection_(std::move(connection)), hasHost_(hasHost), replies_(replies) {
  connection_.registerVirtualObject(watcherPath, this);
  connection_.registerService(watcherName);
}

FakeWatcher::~FakeWatcher() {
  connection_.unregisterService(watcherName);
  connection_.unregisterObject(watcherPath);
}

void FakeWatcher::setHasHost(bool hasHost) {
  hasHost_ = hasHost;
  sendSignal(hasHost ? QStringLiteral("StatusNotifierHostRegistered")
                     : QStringLiteral("StatusNotifierHostUnregistered"));
}

void FakeWatcher::sendSignal(const QString& name, const QVariantList& arguments) {
  QDBusMessage signal = QDBusMessage::createSignal(watcherPath, watcherName, name);
  signal.setArguments(arguments);
  connection_.send(signal);
}

QString FakeWatcher::introspect(const QString& path) const {
  Q_UNUSED(path)
  return {};
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
      connection.send(message.createReply({QStringLiteral("nonsense"), QByteArray(100000, 'x'), 7}));
      break;
    case WatcherReplies::none:
      break;
  }
  return true;
}

}  // namespace tarn::test
