// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_window.hpp"

#include <QBitmap>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>
#include <utility>

#include "ui/widgets/painting.hpp"

namespace tarn {

namespace {

constexpr int cornerRadius = 12;
constexpr int shadowWidth = 28;  ///< width of the shadow around the content, points
constexpr int shadowDrop = 6;    ///< offset of the shadow below the content, points
/// A click within this time and distance (points) of a press outside is the release of that press.
constexpr std::chrono::milliseconds sameClickTime{400};
constexpr int sameClickDistance = 48;

Qt::WindowFlags flagsFor(PopoverStyle style) {
  switch (style) {
    case PopoverStyle::popup:
      return Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    case PopoverStyle::tool:
      return Qt::Tool | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    case PopoverStyle::regular:
      break;
  }
  return Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint;
}

/// The window's shape where it is not blended: exactly the pixels that are painted.
QBitmap roundedMask(const QSize& size) {
  QBitmap mask(size);
  mask.clear();
  QPainter painter(&mask);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Qt::color1);
  painter.drawRoundedRect(QRect(QPoint(0, 0), size), cornerRadius, cornerRadius);
  return mask;
}

/// Draws thin translucent layers that add up to a shadow, darkest at the content's edge.
void paintShadow(QPainter& painter, const QRectF& content) {
  constexpr int layers = 14;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  for (int layer = layers; layer >= 1; --layer) {
    const double spread = static_cast<double>(layer) * (shadowWidth - shadowDrop) / layers;
    painter.setBrush(QColor(0, 0, 0, (layers - layer) / 2 + 1));
    painter.drawRoundedRect(content.adjusted(-spread, shadowDrop - spread, spread, shadowDrop + spread),
                            cornerRadius + spread, cornerRadius + spread);
  }
}

}  // namespace

PopoverWindow::PopoverWindow(PopoverView* view, std::unique_ptr<CompositorPlacement> compositor, Clock clock)
    : view_(view), compositor_(std::move(compositor), [this] { fitToContent(); }), clock_(std::move(clock)) {
  setWindowTitle(QStringLiteral("Tarn"));
  auto* frame = new QVBoxLayout(this);
  frame->setContentsMargins(0, 0, 0, 0);
  frame->setSizeConstraint(QLayout::SetNoConstraint);
  frame->addWidget(view_);
}

void PopoverWindow::setTheme(const Theme& theme) {
  setPalette(theme.palette());
}

void PopoverWindow::open(PopoverStyle style, const PopoverGeometry& geometry,
                         const WindowCapabilities& capabilities) {
  geometry_ = geometry;
  isAtPointer_ = false;
  closedByPress_.reset();
  applyStyle(style, capabilities);
  show();
  raise();
  if (style != PopoverStyle::popup) activateWindow();
}

void PopoverWindow::toggle(PopoverStyle style, const PopoverGeometry& geometry,
                           const WindowCapabilities& capabilities) {
  if (isVisible()) {
    close();
    return;
  }
  // The press of a click on the item closes the popover. Its release must not open the popover again.
  const bool isNear = style_ == PopoverStyle::tool || !geometry.anchor ||
                      (*geometry.anchor - lastPress_).manhattanLength() < sameClickDistance;
  const bool sameClick = isNear && closedByPress_ && clock_() - *closedByPress_ < sameClickTime;
  closedByPress_.reset();
  if (sameClick) return;
  open(style, geometry, capabilities);
  isAtPointer_ = true;
}

void PopoverWindow::applyStyle(PopoverStyle style, const WindowCapabilities& capabilities) {
  const bool blended = capabilities.blendsWindows && style != PopoverStyle::regular;
  if (blended != blended_ || style != style_ || !testAttribute(Qt::WA_WState_Created)) {
    destroy();  // flags and translucency belong to the native window: it is created again
    setWindowFlags(flagsFor(style));
    setAttribute(Qt::WA_TranslucentBackground, blended);
  }
  setAttribute(Qt::WA_MacAlwaysShowToolWindow);
  style_ = style;
  blended_ = blended;
  isPlaced_ = capabilities.clientsPlaceWindows && style != PopoverStyle::regular;
  compositor_.setEnabled(style != PopoverStyle::regular);
  const int margin = blended ? shadowWidth : 0;
  layout()->setContentsMargins(margin, margin, margin, margin);
}

QRect PopoverWindow::contentFrame() const {
  return rect().marginsRemoved(layout()->contentsMargins());
}

ScreenArea PopoverWindow::screenArea() const {
  if (compositor_.place()) return compositor_.place()->screen;
  const auto& [anchor, panel] = geometry_;
  const QScreen* screen = anchor ? QGuiApplication::screenAt(*anchor) : nullptr;
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  if (screen == nullptr) return {};
  const ScreenArea area{screen->geometry(), screen->availableGeometry()};
  const bool isInPanel = anchor && panel && panel->contains(*anchor);
  return isInPanel ? besidePanel(area, *panel) : area;
}

/// Applies fonts and layouts now. The content's height depends on them, and Qt applies them after the window
/// is shown.
void PopoverWindow::updateContentLayout() {
  for (const QWidget* widget : view_->findChildren<QWidget*>()) widget->ensurePolished();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

void PopoverWindow::fitToContent() {
  const QLayout* content = view_->layout();
  const int width = view_->maximumWidth();
  const int preferredHeight =
      content->hasHeightForWidth() ? content->totalHeightForWidth(width) : content->sizeHint().height();
  place(QSize(width, qMin(preferredHeight, popoverHeightLimit(screenArea()))));
}

void PopoverWindow::place(const QSize& size) {
  const QMargins margins = layout()->contentsMargins();
  if (isPlaced_) {
    setGeometry(popoverFrame(geometry_.anchor, size, screenArea()).marginsAdded(margins));
  } else {
    // A fixed size makes the window float in tiling compositors.
    if (style_ == PopoverStyle::tool) {
      setFixedSize(size.grownBy(margins));
    } else {
      setMinimumSize(0, 0);
      setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
      resize(size.grownBy(margins));
    }
    moveByCompositor(size);
  }
  updateMask();
}

void PopoverWindow::moveByCompositor(const QSize& size) {
  if (!compositor_.place()) return;
  const auto& [screen, pointer] = *compositor_.place();
  const bool isBeside = isAtPointer_ && isPlausibleAnchor(pointer, screen);
  const QRect frame = popoverFrame(isBeside ? std::optional(pointer) : std::nullopt, size, screen);
  compositor_.moveTo(frame.marginsAdded(layout()->contentsMargins()).topLeft());
}

/// Sets the mask of the native window where its corners are not blended. QWidget::setMask() would also clip
/// all painting to the mask, which costs time and memory.
void PopoverWindow::updateMask() {
  if (windowHandle() == nullptr) return;
  const bool isMasked = style_ != PopoverStyle::regular && !blended_;
  windowHandle()->setMask(isMasked ? QRegion(roundedMask(size())) : QRegion());
}

bool PopoverWindow::event(QEvent* event) {
  const bool handled = QWidget::event(event);
  if (event->type() == QEvent::LayoutRequest && isVisible()) fitToContent();
  return handled;
}

void PopoverWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  compositor_.startLocating();
  updateContentLayout();
  fitToContent();
  // No control has the focus at first. Tab moves it to the first control.
  setFocus(Qt::OtherFocusReason);
}

void PopoverWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  const bool lostFocus = event->type() == QEvent::ActivationChange && !isActiveWindow();
  if (!lostFocus || style_ != PopoverStyle::tool || !isVisible()) return;
  closedByPress_ = clock_();  // the press may have been on the item
  close();
}

void PopoverWindow::closeEvent(QCloseEvent* event) {
  QWidget::closeEvent(event);
  compositor_.stopLocating();
  Q_EMIT closed();
}

void PopoverWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && style_ != PopoverStyle::regular) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

void PopoverWindow::mousePressEvent(QMouseEvent* event) {
  if (style_ != PopoverStyle::popup || contentFrame().contains(event->position().toPoint())) return;
  lastPress_ = event->globalPosition().toPoint();
  closedByPress_ = clock_();
  close();
}

void PopoverWindow::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  const Theme& theme = themeOf(*this);
  if (style_ == PopoverStyle::regular) {
    painter.fillRect(event->rect(), theme.background);
    return;
  }
  const QRect content = contentFrame();
  if (blended_ && !content.contains(event->rect())) paintShadow(painter, content);
  paintRoundedFrame(painter, content, cornerRadius, {theme.background, theme.border}, event->rect());
}

}  // namespace tarn
