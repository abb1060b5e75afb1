// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QPoint>
#include <optional>

#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// Tarn's item in the menu bar: shows a label and emits a signal for each user action. Main thread.
///
/// The host, for example a panel, may appear and disappear at any time. The item detects both.
class MenuBarItem : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// Shows `label` on every current and later host. Sends no message when `label` is unchanged.
  virtual void show(const MenuBarLabel& label) = 0;

 Q_SIGNALS:
  /// The item was clicked. `position` is the position that the host reports, in screen coordinates. Some
  /// hosts report a wrong position or no position.
  void activated(std::optional<QPoint> position);

  /// "Open" was chosen from the item's menu.
  void openRequested();

  /// "Quit" was chosen from the item's menu.
  void quitRequested();

  /// A host now shows the item.
  void hostAppeared();

  /// No host shows the item: none appeared within the grace time after the start, or after the last host
  /// disappeared. Emitted again only after a host has appeared.
  void hostMissing();
};

}  // namespace tarn
