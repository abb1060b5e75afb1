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

/// Another process on the bus: calls methods of `service` and records its signals.
class BusClient final : public QObject {
  Q_OBJECT

 public:
  BusClient(QDBusConnection connection, QString service);

  /// Calls a method and runs the event loop until the reply arrives.
  QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                    const QVariantList& arguments = {});

  /// The value of a property; invalid when it does not exist.
  QVariant property(const QString& path, const QString& interface, const QString& name);

  /// The values of all properties.
  QVariantMap properties(const QString& path, const QString& interface);

  /// Starts to record these signals of an object's interface.
  void recordSignals(const QString& path, const QString& interface, const QStringList& names);

  /// Returns all signals that `service` has sent so far, and clears the record.
  QList<QDBusMessage> takeSignals();

  /// As takeSignals(), but returns the names of the signals, sorted.
  QStringList takeSignalNames();

 private Q_SLOTS:
  void record(const QDBusMessage& message);

 private:
  QDBusConnection connection_;
  QString service_;
  QList<QDBusMessage> signals_;
};

}  // namespace tarn::test
