// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/status_notifier/watcher_registration.hpp"
#include "platform/linux/status_notifier/dbus_menu.hpp"
#include "platform/linux/status_notifier/status_notifier_item.hpp"
#include "platform/linux/status_notifier/xembed_item.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"

namespace tarn {

/// What the item needs of the desktop.
struct PanelItemDesktop {
  QDBusConnection bus;
  ProgramNameSource programName;
  std::function<std::optional<bool>()> hasEmbeddingTray;  ///< empty where there can be no such tray
  std::chrono::milliseconds grace{5000};                  ///< how long a panel may take to appear
};

/// Tarn's item on the panel of a Linux desktop: on the bus, and in a tray of the older kind while there is
/// such a tray but no watcher. The first label starts it.
class PanelItem final : public MenuBarItem {
  Q_OBJECT

 public:
  explicit PanelItem(PanelItemDesktop desktop, QObject* parent = nullptr);

  void show(const MenuBarLabel& label) override;

  /// Is there on another bus, the former being gone.
  void moveTo(const QDBusConnection& bus);

 private:
  enum class Presence { undecided, shown, missing };

  void start(MenuBarLabel label);
  void hostChanged();
  void graceEnded();
  void embed();
  void setPresence(Presence presence);

  PanelItemDesktop desktop_;
  QTimer grace_;
  Presence presence_ = Presence::undecided;
  std::unique_ptr<StatusNotifierItem> item_;
  std::unique_ptr<NotifierMenu> menu_;
  std::unique_ptr<NotifierHost> host_;
  std::unique_ptr<XembedItem> embedded_;
};

}  // namespace tarn
