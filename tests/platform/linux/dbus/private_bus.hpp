// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace tarn::test {

/// A message bus for one test, which knows no service and starts none.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();
  Q_DISABLE_COPY_MOVE(PrivateBus)

  /// A connection of its own each time.
  QDBusConnection connection();

  /// Stops the bus from running, and lets it go on.
  void pause() const;
  void resume() const;

  /// Ends the bus under everybody's feet.
  void kill();

  /// Starts the bus that was killed, at the same address.
  void start();

  /// Where programs find it.
  const QString& address() const { return address_; }

 private:
  QTemporaryDir directory_;
  QProcess daemon_;
  QString address_;
  QString configuration_;
  QStringList names_;
};

}  // namespace tarn::test
