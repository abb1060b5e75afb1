// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

namespace tarn {

/// Follows who owns a name on the bus, without ever waiting for an answer. Main thread.
class BusName final : public QObject {
  Q_OBJECT

 public:
  /// Starts to follow `name`; the first owner is reported as any later one.
  BusName(const QDBusConnection& bus, QString name, QObject* parent = nullptr);

  /// The unique name of the owner; blank when there is none, or none known yet.
  const QString& owner() const { return owner_; }

 Q_SIGNALS:
  /// The owner is another one now, or there is none any more.
  void ownerChanged(const QString& owner);

 private Q_SLOTS:
  void nameOwnerChanged(const QDBusMessage& message);
  void disconnected();

 private:
  void setOwner(const QString& owner);

  QString name_;
  QString owner_;
  bool toldByTheBus_ = false;
};

}  // namespace tarn
