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

FakeWatcher::FakeWatcher(QDBusConnection connection, bool hasPanel, Manners manners)
    : connection_(std::move(connection)), hasPanel_(hasPanel), manners_(manners) {
  connection_.registerVirtualObject(watcherPath, this);
  connection_.registerService(watcherName);
}

FakeWatcher::~FakeWatcher() {
  connection_.unregisterService(watcherName);
  connection_.unregisterObject(watcherPath);
}

void FakeWatcher::setHasPanel(bool hasPanel) {
  hasPanel_ = hasPanel;
  sendSignal(hasPanel ? QStringLiteral("StatusNotifierHostRegistered")
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
    ++questions_;
  }
  const QDBusMessage properAnswer =
      registers ? message.createReply() : message.createReply(QVariant::fromValue(QDBusVariant(hasPanel_)));
  const QDBusMessage refusal = message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("No"));
  switch (manners_) {
    case Manners::proper:
      connection.send(properAnswer);
      break;
    case Manners::refusing:
      connection.send(refusal);
      break;
    case Manners::refusingItems:
      connection.send(registers ? refusal : properAnswer);
      break;
    case Manners::talkingNonsense:
      connection.send(message.createReply({QStringLiteral("nonsense"), QByteArray(100000, 'x'), 7}));
      break;
    case Manners::silent:
      break;
  }
  return true;
}

}  // namespace tarn::test
