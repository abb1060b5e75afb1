// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QPoint>
#include <memory>
#include <optional>

#include "app/platform.hpp"
#include "monitor/monitor_view_model.hpp"
#include "monitor/preferences.hpp"
#include "monitor/qt_run_loop.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"
#include "ui/popover/popover_window.hpp"
#include "ui/widgets/color_scheme.hpp"
#include "ui/widgets/render_scheduler.hpp"

namespace tarn {

/// The application: makes the long-lived objects once, wires them, and keeps them until it ends. Main thread.
class TarnApp : public QObject {
  Q_OBJECT

 public:
  /// `platform` must outlive this object.
  explicit TarnApp(Platform& platform);

  /// Waits for a sweep in flight, which still uses the run loop.
  ~TarnApp() override;

  TarnApp(const TarnApp&) = delete;
  TarnApp& operator=(const TarnApp&) = delete;

  /// Shows the popover in the screen's corner, for a second launch of the program.
  void openPopover();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void renderLabel();
  void applyTheme();
  void openPopoverAt(std::optional<QPoint> anchor, const WindowSystemState& state);
  void itemClicked(std::optional<QPoint> position);
  void showWithoutMenuBar();
  void leaveForMenuBar();
  PopoverWindow& popover();

  Platform& platform_;
  QtRunLoop runLoop_;
  std::shared_ptr<MonitorViewModel> model_;
  Preferences prefs_;
  std::unique_ptr<ColorSchemeWatcher> colorScheme_;
  std::unique_ptr<MenuBarItem> item_;
  RenderScheduler labelRenderer_;
  MenuBarHover toldHover_;
  bool hasMenuBar_ = true;                   ///< until the item says otherwise
  std::unique_ptr<PopoverWindow> popover_;   ///< made at its first opening and kept
  std::unique_ptr<QObject> workspaceWatch_;  ///< likewise; null where there is none
};

}  // namespace tarn
