// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>

namespace tarn {

/// Where programs find the session bus, by this process's environment; blank where it does not say.
QString sessionBusAddress();

/// The session bus, also after it went away: looks for one at the same address until it is back. Costs
/// nothing while the bus is there. All that follow one address share the connection. Main thread.
class SessionBus final : public QObject {
  Q_OBJECT

 public:
  /// Follows the bus of `connection`, which need not be connected. With a blank `address` a bus that is not
  /// there is not looked for.
  SessionBus(QDBusConnection connection, QString address, QObject* parent = nullptr);

  /// The connection stays as long as others hold it.
  ~SessionBus() override;
  Q_DISABLE_COPY_MOVE(SessionBus)

  /// The present connection, or the last one where there is none now.
  const QDBusConnection& connection() const { return connection_; }

  /// How often a bus that is not there is looked for; to be called before that.
  void setInterval(std::chrono::milliseconds interval) { retry_.setInterval(interval); }

 Q_SIGNALS:
  /// The bus is here, which it was not before: on it nobody knows this program yet.
  void appeared();

 private Q_SLOTS:
  void disconnected();

 private:
  void follow();
  void look();

  QDBusConnection connection_;
  QString address_;
  QTimer retry_;
  QString ownName_;    // of the connection among the library's; blank for one that others made
  int connected_ = 0;  // how many connections there were
};

}  // namespace tarn
