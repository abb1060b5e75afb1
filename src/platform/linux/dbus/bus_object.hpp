// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QHash>
#include <QString>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>
#include <functional>
#include <optional>

namespace tarn {

/// One method of a bus interface. It is called only with arguments of exactly its signature; it returns the
/// reply's arguments, or nothing when the values make no sense.
struct BusMethod {
  QString signature;
  std::function<std::optional<QVariantList>(const QVariantList& arguments)> call;
};

/// What an object on the bus consists of. Properties are read-only and asked for at each read, so that one
/// may be there at one time and not at another, which a fixed interface cannot express.
struct BusInterface {
  QString name;
  QHash<QString, BusMethod> methods;
  std::function<QVariantMap()> properties;
  QString
      introspection;  ///< the XML of methods and signals; that of the properties is made from their values
};

/// An object on the bus with one interface, answered from tables. Whatever is sent to it, it answers with a
/// result or an error and stays as it was; after many calls, unused memory goes back to the system. Main
/// thread.
class BusObject final : public QDBusVirtualObject {
  Q_OBJECT

 public:
  /// Appears at `path` of `bus` until destroyed; without a bus it is simply not reachable.
  BusObject(QDBusConnection bus, QString path, BusInterface interface, QObject* parent = nullptr);
  ~BusObject() override;
  Q_DISABLE_COPY_MOVE(BusObject)

  /// Sends a signal of this object's interface.
  void sendSignal(const QString& name, const QVariantList& arguments = {});

  /// Tells whoever keeps a copy of the properties which values are new.
  void sendPropertiesChanged(const QVariantMap& changed);

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  QDBusMessage answer(const QDBusMessage& message) const;
  QDBusMessage answerProperties(const QDBusMessage& message) const;

  QDBusConnection bus_;
  QString path_;
  BusInterface interface_;
  unsigned answered_ = 0;
  QTimer calm_;  ///< runs for a while after many calls
};

}  // namespace tarn
