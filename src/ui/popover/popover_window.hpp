// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPoint>
#include <QWidget>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "ui/popover/popover_placement.hpp"
#include "ui/popover/popover_view.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {

/// How the popover's window behaves.
enum class PopoverStyle {
  popup,    ///< any press outside closes it; the other application keeps the focus
  tool,     ///< takes the focus, and closes when it loses the focus
  regular,  ///< a normal window that stays open; used when no menu bar shows the item
};

/// What the window system supports. A compositor may start or stop at any time, so this is read before each
/// opening.
struct WindowCapabilities {
  bool clientsPlaceWindows = true;    ///< true on X11 and macOS, false on Wayland
  bool blendsWindows = false;         ///< a compositor shows translucent windows
  bool popupsTakeKeys = true;         ///< if false, the popover is a window that takes the focus
  bool clickPositionIsExact = false;  ///< the host reports the exact position of a click on the item
};

/// Where a popover opens, in screen coordinates.
struct PopoverGeometry {
  std::optional<QPoint> anchor = {};             ///< the menu-bar item; nullopt: the screen's corner
  std::optional<QRect> windowUnderPointer = {};  ///< the panel, when the item was clicked and X11 reports it
};

/// The window around the popover's view. It has rounded corners, a border, and a shadow if the window system
/// blends windows. Main thread.
class PopoverWindow : public QWidget {
  Q_OBJECT

 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  /// Takes ownership of `view`. `compositor` may be null.
  explicit PopoverWindow(PopoverView* view, std::unique_ptr<CompositorPlacement> compositor = nullptr,
                         Clock clock = std::chrono::steady_clock::now);

  void setTheme(const Theme& theme);

  /// Shows the popover beside the item; without an anchor, in the screen's corner.
  void open(PopoverStyle style, const PopoverGeometry& geometry, const WindowCapabilities& capabilities);

  /// Handles a click on the item: opens or closes the popover. A click whose press already closed the popover
  /// does not open it again.
  void toggle(PopoverStyle style, const PopoverGeometry& geometry, const WindowCapabilities& capabilities);

  PopoverStyle style() const { return style_; }

 Q_SIGNALS:
  /// The window was closed, by the user or by this program.
  void closed();

 protected:
  void changeEvent(QEvent* event) override;
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void applyStyle(PopoverStyle style, const WindowCapabilities& capabilities);
  void moveByCompositor(const QSize& size);
  void updateContentLayout();
  void fitToContent();
  void place(const QSize& size);
  void updateMask();
  QRect contentFrame() const;
  ScreenArea screenArea() const;

  PopoverView* view_;
  PopoverStyle style_ = PopoverStyle::popup;
  PopoverGeometry geometry_;
  bool blended_ = false;
  bool isPlaced_ = true;  ///< this program places the window beside the item
  CompositorConnection compositor_;
  bool isAtPointer_ = false;  ///< a click on the item opened the popover
  Clock clock_;
  QPoint lastPress_;  ///< position of the last press outside that closed the popover, in screen coordinates
  /// When a press outside closed the popover. nullopt if it was closed in another way.
  std::optional<std::chrono::steady_clock::time_point> closedByPress_;
};

}  // namespace tarn
