// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include "platform/linux/dbus/bus_name.hpp"

namespace tarn {

/// The name of the program that a process runs, by its pid; blank when unknown.
using ProgramNameSource = std::function<QString(unsigned pid)>;

/// Registers the item with the panels' watcher, each time that one appears, and knows whether a panel shows
/// it. Every question is asynchronous and may stay without an answer. Main thread.
class NotifierHost final : public QObject {
  Q_OBJECT

 public:
  /// Looks for a watcher from now on; signals come from the event loop only.
  NotifierHost(const QDBusConnection& bus, ProgramNameSource programName, QObject* parent = nullptr);

  /// Whether a watcher is there, with a panel or without.
  bool hasWatcher() const { return !watcher_.owner().isEmpty(); }

  /// Whether the watcher took the item and a panel is there to show it.
  bool showsItem() const { return registered_ && hasPanel_; }

 Q_SIGNALS:
  /// A watcher appeared, run by this program (blank when unknown); the item is registered with it next.
  void watcherFound(const QString& programName);

  /// hasWatcher() or showsItem() may be another now.
  void changed();

 private Q_SLOTS:
  void panelsChanged(const QDBusMessage& message);

 private:
  using Reply = std::function<void(const QDBusMessage&)>;

  void meet(const QString& owner);
  void registerItem();
  void askForPanel();
  void ask(const QDBusMessage& question, const Reply& reply);

  QDBusConnection bus_;
  ProgramNameSource programName_;
  BusName watcher_;
  std::unique_ptr<QObject> acquaintance_;  // owns what is still asked of the present watcher
  bool registered_ = false;
  bool hasPanel_ = false;
  bool asking_ = false;
  bool askAgain_ = false;
};

}  // namespace tarn
