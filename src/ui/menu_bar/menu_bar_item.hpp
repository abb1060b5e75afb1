// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QPoint>
#include <optional>

#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// Tarn's place in the menu bar: shows a label there and reports what the user does with it. Main thread.
///
/// The host (a panel) may come, go and come back at any time; the item follows without being told.
class MenuBarItem : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// Shows `label`, now and on every host that appears later. Nothing is sent when nothing changed.
  virtual void show(const MenuBarLabel& label) = 0;

 Q_SIGNALS:
  /// The item was clicked. `position` is the host's word for where, in screen coordinates, which some hosts
  /// get wrong; nothing when the host does not say.
  void activated(std::optional<QPoint> position);

  /// "Open" was chosen from the item's menu.
  void openRequested();

  /// "Quit" was chosen from the item's menu.
  void quitRequested();

  /// A host shows the item now.
  void hostAppeared();

  /// No host shows the item: none came within the grace time after the start, or the last one left and none
  /// followed within it. Not repeated until a host has appeared in between.
  void hostMissing();
};

}  // namespace tarn
