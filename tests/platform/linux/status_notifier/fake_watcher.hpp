// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QStringList>
#include <QVariant>

#include "platform/linux/dbus/fake_service.hpp"

namespace tarn::test {

/// The replies of a FakeWatcher: correct; errors to all calls; errors to RegisterStatusNotifierItem;
/// malformed; none.
enum class WatcherReplies { correct, errors, registrationErrors, malformed, none };

/// A StatusNotifierWatcher on the bus until it is destroyed, with or without a host (a panel).
class FakeWatcher final : public FakeService {
 public:
  explicit FakeWatcher(QDBusConnection connection, bool hasHost = true,
                       WatcherReplies replies = WatcherReplies::correct);

  /// Adds or removes the host, and sends the signal for it.
  void setHasHost(bool hasHost);

  /// Sends a signal of the watcher's interface.
  void sendSignal(const QString& name, const QVariantList& arguments = {});

  /// The items that were registered, in order.
  const QStringList& items() const { return items_; }

  /// How often the property IsStatusNotifierHostRegistered was read.
  int hostQueries() const { return hostQueries_; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  bool hasHost_;
  WatcherReplies replies_;
  QStringList items_;
  int hostQueries_ = 0;
};

}  // namespace tarn::test
