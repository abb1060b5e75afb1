// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/status_notifier/dbus_menu.hpp"
#include "platform/linux/status_notifier/status_notifier_item.hpp"
#include "platform/linux/status_notifier/watcher_registration.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"

namespace tarn {

class XembedItem;

/// What PanelItem needs from the desktop.
struct PanelItemDesktop {
  QDBusConnection bus;
  ProgramNameSource programName;

  /// Whether an XEmbed tray exists (System Tray Protocol, freedesktop.org); nullopt while that is unknown.
  /// The function is empty where no such tray can exist.
  std::function<std::optional<bool>()> hasXembedTray;

  std::chrono::milliseconds grace{5000};  ///< the time that a panel may take to appear

  /// Called when a burst of D-Bus calls has left much freed memory in the heap. May be empty.
  std::function<void()> releaseMemory = {};
};

/// Tarn's item on the panel of a Linux desktop: a StatusNotifierItem, and an XEmbed tray icon while there is
/// such a tray and no StatusNotifierWatcher. The first call of show() starts it. Main thread.
class PanelItem final : public MenuBarItem {
  Q_OBJECT

 public:
  explicit PanelItem(PanelItemDesktop desktop, QObject* parent = nullptr);
  ~PanelItem() override;
  Q_DISABLE_COPY_MOVE(PanelItem)

  void show(const MenuBarLabel& label) override;

  /// Registers the item on `bus`, which replaces the former one.
  void moveTo(const QDBusConnection& bus);

 private:
  enum class Presence { undecided, shown, missing };

  void start(MenuBarLabel label);
  void registrationChanged();
  void graceExpired();
  void setPresence(Presence presence);

  PanelItemDesktop desktop_;
  QTimer grace_;
  Presence presence_ = Presence::undecided;
  std::unique_ptr<StatusNotifierItem> item_;
  std::unique_ptr<DBusMenu> menu_;
  std::unique_ptr<WatcherRegistration> registration_;
  std::unique_ptr<XembedItem> xembedItem_;
};

}  // namespace tarn
