// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QMenu>
#include <QObject>
#include <QPoint>
#include <QSystemTrayIcon>

#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// The item in a tray of the older kind, which embeds windows. To be made only while no watcher is on the
/// bus: the toolkit chooses between the two kinds once, when it makes its first. Main thread.
class XembedItem final : public QObject {
  Q_OBJECT

 public:
  /// Visible from now on, showing `label`.
  explicit XembedItem(const MenuBarLabel& label, QObject* parent = nullptr);

  /// Shows `label`: the circle, with the rest in the tooltip.
  void show(const MenuBarLabel& label);

 Q_SIGNALS:
  /// The item was clicked while the pointer was here.
  void activated(QPoint position);
  void openChosen();
  void quitChosen();

 private:
  QMenu menu_;
  QSystemTrayIcon icon_;
};

}  // namespace tarn
