// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include "platform/linux/dbus/session_bus.hpp"

namespace tarn {

/// How a panel shows text beside an item's icon.
enum class HostKind {
  plain,         ///< shows no text and scales wide icons to a square; text is in title and tooltip only
  wideIcons,     ///< icons keep their proportions, so the text can be painted into them
  ayatanaLabel,  ///< shows the property XAyatanaLabel
};

/// The kind of the panel whose executable has the file name `programName`.
HostKind hostKind(const QString& programName);

/// The file name of the executable of process `pid`, else its "comm"; empty when there is no such process.
QString runningProgramName(unsigned pid);

/// Returns the program name of a process; empty when unknown.
using ProgramNameSource = std::function<QString(unsigned pid)>;

/// Registers this connection's item with the StatusNotifierWatcher each time a watcher appears, and follows
/// whether a StatusNotifierHost (a panel) shows it: see the StatusNotifierItem specification
/// (freedesktop.org). The names on the bus start with "org.kde", as in all implementations. Never blocks;
/// calls may stay without a reply. Main thread.
class WatcherRegistration final : public QObject {
  Q_OBJECT

 public:
  /// Starts to look for a watcher. Signals are emitted from the event loop only.
  WatcherRegistration(const QDBusConnection& bus, ProgramNameSource programName, QObject* parent = nullptr);

  /// Whether a watcher is on the bus, with or without a host.
  bool hasWatcher() const { return !watcher_.owner().isEmpty(); }

  /// Whether the watcher accepted the item and has a host.
  bool showsItem() const { return isRegistered_ && hasHost_; }

 Q_SIGNALS:
  /// A watcher appeared, which runs in the process of a panel of this kind. Emitted before the item is
  /// registered, because the panel reads the item immediately after that.
  void watcherFound(HostKind kind);

  /// hasWatcher() or showsItem() may have changed.
  void changed();

 private Q_SLOTS:
  void hostsChanged(const QDBusMessage& message);

 private:
  using ReplyHandler = std::function<void(const QDBusMessage&)>;

  void watcherChanged(const QString& owner);
  void registerItem();
  void queryHost();
  void call(const QDBusMessage& message, const ReplyHandler& handler);

  QDBusConnection bus_;
  ProgramNameSource programName_;
  BusNameWatcher watcher_;
  std::unique_ptr<QObject> callContext_;  ///< owns the pending calls about the current watcher
  bool isRegistered_ = false;
  bool hasHost_ = false;
  bool isHostQueryPending_ = false;
  bool isHostQueryOutdated_ = false;  ///< hosts changed while the query was pending
};

}  // namespace tarn
