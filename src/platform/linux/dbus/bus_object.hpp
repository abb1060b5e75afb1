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
#include <chrono>
#include <functional>
#include <optional>

namespace tarn {

/// One method of a D-Bus interface.
struct BusMethod {
  QString signature;  ///< of the arguments; a call with another signature is rejected before `call`

  /// Returns the arguments of the reply, or nullopt when the values of the arguments are invalid.
  std::function<std::optional<QVariantList>(const QVariantList& arguments)> call;
};

/// A D-Bus interface with read-only properties. `properties` is called for each read, so that properties can
/// appear and disappear. An interface that is generated from XML has fixed properties.
struct BusInterface {
  QString name;
  QHash<QString, BusMethod> methods;
  std::function<QVariantMap()> properties;
  QString
      introspection;  ///< XML of methods and signals; the XML of properties is generated from their values
};

/// An object on the bus with one interface beside org.freedesktop.DBus.Properties and Introspectable. Each
/// call is answered with a result or with an error. Main thread.
class BusObject final : public QDBusVirtualObject {
  Q_OBJECT

 public:
  /// burstEnded() is emitted this long after the last call of a burst.
  static constexpr std::chrono::seconds burstPause{2};

  /// Registers the object at `path` of `bus` until it is destroyed. `bus` may be disconnected.
  BusObject(QDBusConnection bus, QString path, BusInterface interface, QObject* parent = nullptr);
  ~BusObject() override;
  Q_DISABLE_COPY_MOVE(BusObject)

  /// Sends a signal of this object's interface.
  void sendSignal(const QString& name, const QVariantList& arguments = {});

  /// Sends org.freedesktop.DBus.Properties.PropertiesChanged with the new values.
  void sendPropertiesChanged(const QVariantMap& changed);

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 Q_SIGNALS:
  /// Emitted after a burst of calls. libdbus keeps replies in memory until the bus reads them, and replies
  /// with images are large: after a burst the heap contains much freed memory.
  void burstEnded();

 private:
  QDBusMessage callMethod(const QDBusMessage& message) const;
  QDBusMessage callProperties(const QDBusMessage& message) const;

  QDBusConnection bus_;
  QString path_;
  BusInterface interface_;
  unsigned callCount_ = 0;
  QTimer burstTimer_;
};

}  // namespace tarn
