// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QPoint>
#include <optional>

#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// Tarn's item in the menu bar: shows a label and emits what the user does with it. Main thread.
///
/// The host, for example a panel, may appear and disappear at any time. The item follows by itself.
class MenuBarItem : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// Shows `label` on every present and later host. Sends nothing when `label` is unchanged.
  virtual void show(const MenuBarLabel& label) = 0;

 Q_SIGNALS:
  /// The item was clicked. `position` is what the host reports, in screen coordinates. Some hosts report a
  /// wrong position, some none.
  void activated(std::optional<QPoint> position);

  /// "Open" was chosen from the item's menu.
  void openRequested();

  /// "Quit" was chosen from the item's menu.
  void quitRequested();

  /// A host now shows the item.
  void hostAppeared();

  /// No host shows the item: none appeared within the grace time after the start, or after the last one
  /// disappeared. Emitted again only after a host has appeared.
  void hostMissing();
};

}  // namespace tarn
