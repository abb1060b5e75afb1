// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QObject>
#include <chrono>

#include "platform/linux/dbus/bus_object.hpp"

namespace tarn {

/// The item's menu, "Open" and "Quit", as an object on the bus that panels draw themselves. It never changes.
/// Main thread.
class NotifierMenu final : public QObject {
  Q_OBJECT

 public:
  /// No hand chooses the same entry twice within this time: more choices are not passed on.
  static constexpr std::chrono::milliseconds choiceInterval{50};

  explicit NotifierMenu(const QDBusConnection& bus, QObject* parent = nullptr);

 Q_SIGNALS:
  /// The entries were chosen. Sent from the event loop, after the panel has its answer.
  void openChosen();
  void quitChosen();

  /// An entry was clicked; the panel still waits for its answer.
  void clicked(int id, QPrivateSignal);

 private:
  BusInterface interface();
  void choose(int id);
  bool handleEvent(int id, const QString& event);

  int lastChoice_ = 0;
  QDeadlineTimer nextChoice_{0};  ///< expired when the last choice may come again
  BusObject object_;
};

}  // namespace tarn
