// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariant>

namespace tarn::test {

/// Somebody else on the bus, who asks `service` and notes the signals that it sends.
class BusClient final : public QObject {
  Q_OBJECT

 public:
  BusClient(QDBusConnection connection, QString service);

  /// Calls a method and runs the event loop until the answer is here.
  QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                    const QVariantList& arguments = {});

  /// The value of a property; invalid when there is none of that name.
  QVariant property(const QString& path, const QString& interface, const QString& name);

  /// The values of all properties.
  QVariantMap properties(const QString& path, const QString& interface);

  /// Notes the signals of an object's interface from now on.
  void listen(const QString& path, const QString& interface, const QStringList& names);

  /// The signals that `service` sent before now, and forgets them.
  QList<QDBusMessage> takeSignals();

  /// Their names.
  QStringList takeSignalNames();

 private Q_SLOTS:
  void note(const QDBusMessage& message);

 private:
  QDBusConnection connection_;
  QString service_;
  QList<QDBusMessage> noted_;
};

}  // namespace tarn::test
