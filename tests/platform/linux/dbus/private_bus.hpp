// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace tarn::test {

/// A dbus-daemon for one test, without activatable services.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();
  Q_DISABLE_COPY_MOVE(PrivateBus)

  /// Makes a new connection.
  QDBusConnection connection();

  /// Suspends and continues the daemon (SIGSTOP, SIGCONT).
  void pause() const;
  void resume() const;

  /// Kills the daemon. All connections are lost.
  void kill();

  /// Starts a killed daemon again, at the same address.
  void start();

  /// A value for DBUS_SESSION_BUS_ADDRESS.
  const QString& address() const { return address_; }

 private:
  QTemporaryDir directory_;
  QProcess daemon_;
  QString address_;
  QString configuration_;
  QStringList names_;
};

}  // namespace tarn::test
