// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>

namespace tarn {

/// The well-known bus name that identifies the running Tarn; also its application id.
QString singleInstanceName();

/// Allows one Tarn per session bus: the owner of singleInstanceName(). The owner also offers the interface
/// org.freedesktop.Application, by which desktops activate it. Main thread.
class BusSingleInstance {
 public:
  explicit BusSingleInstance(QDBusConnection bus);

  /// Returns whether this process must continue: it owns the name, or there is no bus, or the owner did not
  /// answer within 2 s. Otherwise the owner was activated before this returns. Blocks only for the owner's
  /// reply. `launchedAgain` is called each time another launch or the desktop activates this process. Call
  /// once.
  bool claim(std::function<void()> launchedAgain);

  /// Requests the name on `bus`, which replaces the former one. Does not block. Another Tarn may have started
  /// while there was no bus: `superseded` is called if it owns the name and answers.
  void claimAgain(const QDBusConnection& bus, std::function<void()> superseded);

 private:
  void registerObject();
  void pingOwner(const std::function<void()>& superseded);

  QDBusConnection bus_;
  QObject object_;  ///< the object that is registered on the bus
};

}  // namespace tarn
