// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <functional>

#include "app/platform.hpp"

namespace tarn {

/// The well-known bus name that the session's one Tarn owns.
QString singleInstanceName();

/// One Tarn per session bus, by the owner of a name on it. It answers as an application that the desktop can
/// activate, so that a launcher reaches it, too.
class BusSingleInstance final : public SingleInstance {
 public:
  explicit BusSingleInstance(QDBusConnection bus);

  bool claim(std::function<void()> launchedAgain) override;

  /// Claims the name on another bus, the former being gone, without waiting. While there was none a second
  /// Tarn may have started: where one that answers has the name, `superseded` is called.
  void claimAgain(const QDBusConnection& bus, std::function<void()> superseded);

 private:
  void present();
  void askOwner(const std::function<void()>& superseded);

  QDBusConnection bus_;
  QObject object_;  ///< what the bus sees
};

/// The desktop's interface to an application.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  /// Owned by `object`.
  ApplicationAdaptor(QObject* object, std::function<void()> activated);

 public Q_SLOTS:
  // The bus finds these by the names that the interface has there.
  // NOLINTBEGIN(readability-identifier-naming)
  void Activate(const QVariantMap& platformData);
  void Open(const QStringList& addresses, const QVariantMap& platformData);
  void ActivateAction(const QString& action, const QVariantList& parameters, const QVariantMap& platformData);
  // NOLINTEND(readability-identifier-naming)

 private:
  std::function<void()> activated_;
};

}  // namespace tarn
