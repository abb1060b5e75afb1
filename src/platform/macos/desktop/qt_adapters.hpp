// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Connects app_kit.hpp to Qt. Built and tested on every system. Main thread.

#pragma once

#include <QIcon>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/macos/desktop/app_kit.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"

namespace tarn::macos {

/// The status item's content for a label.
StatusItemContent statusItemContent(const MenuBarLabel& label);

/// The menu-bar item as a status item. macOS always has a menu bar: hostAppeared() follows the first show(),
/// hostMissing() is never emitted.
class MenuBarStatusItem final : public MenuBarItem {
  Q_OBJECT

 public:
  using Factory = std::function<std::unique_ptr<StatusItem>(std::function<void(ScreenPoint)> clicked)>;

  explicit MenuBarStatusItem(const Factory& makeItem);

  void show(const MenuBarLabel& label) override;

 Q_SIGNALS:
  /// The first label was shown; `hostAppeared` follows from the event loop.
  void firstShown(QPrivateSignal);

 private:
  std::unique_ptr<StatusItem> item_;
  std::optional<MenuBarLabel> shown_;
};

/// An icon from one image per scale, beginning with scale 1. Empty images are skipped.
QIcon makeIcon(const std::vector<Pixels>& imagesByScale);

}  // namespace tarn::macos
