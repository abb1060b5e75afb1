// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/macos/desktop/status_item.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"

namespace tarn::macos {

/// What the item shows for a label.
StatusItemContent statusItemContent(const MenuBarLabel& label);

/// Tarn's place in the menu bar as a status item, which needs no host: there always is a menu bar.
class MenuBarStatusItem final : public MenuBarItem {
  Q_OBJECT

 public:
  using Factory = std::function<std::unique_ptr<StatusItem>(std::function<void(ScreenPoint)> clicked)>;

  explicit MenuBarStatusItem(const Factory& makeItem);

  void show(const MenuBarLabel& label) override;

 private:
  std::unique_ptr<StatusItem> item_;
  std::optional<MenuBarLabel> shown_;
};

}  // namespace tarn::macos
