// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>
#include <memory>
#include <optional>

#include "app/platform.hpp"
#include "monitor/monitor_view_model.hpp"
#include "monitor/preferences.hpp"
#include "monitor/qt_run_loop.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"
#include "ui/popover/popover_window.hpp"
#include "ui/widgets/render_scheduler.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {

/// The application: creates the long-lived objects, connects them, and owns them until the program ends. Main
/// thread.
class TarnApp : public QObject {
  Q_OBJECT

 public:
  /// `platform` must outlive this object.
  explicit TarnApp(Platform& platform);

  /// Waits for the sweep in flight, if any: it uses the run loop.
  ~TarnApp() override;

  TarnApp(const TarnApp&) = delete;
  TarnApp& operator=(const TarnApp&) = delete;

  /// Opens the popover in the screen's corner, for a second launch of the program.
  void openPopover();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void connectItem();
  void renderLabel();
  void applyTheme();

  /// The popover; created at the first call and then kept.
  PopoverWindow& popover();
  void createPopover();
  void finishClosing();
  void openPopoverAtPointer();
  void openPopoverAt(std::optional<QPoint> anchor, const WindowSystemState& state);

  /// Opens or closes the popover after a click on the item at `position`, as the host reports it.
  void togglePopover(std::optional<QPoint> position);

  // Without a host for the item, the popover is a regular window.
  void showRegularWindow();
  void hideRegularWindow();
  bool isRegularWindow() const;

  Platform& platform_;
  QtRunLoop runLoop_;
  std::shared_ptr<MonitorViewModel> model_;
  Preferences prefs_;
  std::unique_ptr<ColorSchemeWatcher> colorScheme_;
  std::unique_ptr<MenuBarItem> item_;
  RenderScheduler labelRenderer_;
  QTimer itemTimeout_;  ///< starts the sweeps if no host shows the item
  ToolTip sentToolTip_;
  bool hasMenuBar_ = true;  ///< false after hostMissing, until a host appears
  std::unique_ptr<PopoverWindow> popover_;
  std::unique_ptr<QObject> workspaceWatch_;  ///< null where watchWorkspaces() returns null
};

/// Runs Tarn until it quits and returns the exit status for main(). The main() of each platform calls it
/// once, on the main thread. `platform` must outlive the call.
int runTarn(int argc, char* argv[], Platform& platform);

}  // namespace tarn
