// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/controls.hpp"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

#include "ui/widgets/painting.hpp"

namespace tarn {

namespace {

constexpr int boxSize = 14;
constexpr int boxGap = 6;
constexpr double boxRadius = 3.5;
constexpr int labelMargin = 4;  ///< from the label to its focus ring, left and right
constexpr double labelRingRadius = 4;
constexpr int pillPadding = 10;
constexpr int pillHeight = 18;

QSize textSize(const QWidget& widget, const QString& text) {
  const QFontMetrics metrics(widget.font());
  return {metrics.horizontalAdvance(text), metrics.height()};
}

}  // namespace

GlyphView::GlyphView(double size, SymbolWeight weight, QWidget* parent)
    : QWidget(parent), size_(size), weight_(weight) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void GlyphView::setSymbol(const QString& name, Color color) {
  if (name == name_ && color == color_) return;
  name_ = name;
  color_ = color;
  update();
}

void GlyphView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF frame((width() - size_) / 2, (height() - size_) / 2, size_, size_);
  const Theme& theme = themeOf(*this);
  drawSymbol(painter, name_, frame, std::visit([&](auto color) { return theme.color(color); }, color_),
             weight_);
}

Divider::Divider(QWidget* parent) : QWidget(parent) {
  setFixedHeight(1);
}

void Divider::paintEvent(QPaintEvent* /*event*/) {
  QPainter(this).fillRect(rect(), themeOf(*this).divider);
}

CheckBox::CheckBox(const QString& label, QWidget* parent) : QCheckBox(label, parent) {
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::TabFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize CheckBox::sizeHint() const {
  const QSize label = textSize(*this, text());
  return {boxSize + boxGap + label.width() + labelMargin, qMax(boxSize, label.height() + labelMargin)};
}

bool CheckBox::hitButton(const QPoint& position) const {
  return rect().contains(position);
}

void CheckBox::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Theme& theme = themeOf(*this);
  const QRectF box =
      QStyle::visualRect(layoutDirection(), rect(), {0, (height() - boxSize) / 2, boxSize, boxSize});
  if (isChecked()) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.accent);
    painter.drawRoundedRect(box, boxRadius, boxRadius);
    drawSymbol(painter, QStringLiteral("checkmark"), box.adjusted(1, 1, -1, -1), Qt::white,
               SymbolWeight::semibold);
  } else {
    painter.setPen(QPen(underMouse() ? theme.secondary : theme.tertiary, 1));
    painter.setBrush(underMouse() ? theme.control : Qt::transparent);
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), boxRadius - 0.5, boxRadius - 0.5);
  }
  const QRect label =
      QStyle::visualRect(layoutDirection(), rect(), rect().adjusted(boxSize + boxGap, 0, -labelMargin, 0));
  // The ring is around the label: around a checked box its contrast with the accent colour is too low.
  if (hasFocus())
    drawFocusRing(painter, label.adjusted(-labelMargin, 0, labelMargin, 0), labelRingRadius, theme);
  painter.setPen(theme.primary);
  painter.drawText(label, Qt::AlignCenter, text());
}

PillButton::PillButton(const QString& label, QWidget* parent) : QPushButton(label, parent) {
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::TabFocus);
  setAutoDefault(true);  // the Return key clicks it
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize PillButton::sizeHint() const {
  return {textSize(*this, text()).width() + 2 * pillPadding, pillHeight};
}

void PillButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Theme& theme = themeOf(*this);
  constexpr double radius = 5;
  painter.setPen(Qt::NoPen);
  painter.setBrush(underMouse() || isDown() ? theme.controlHover : theme.control);
  painter.drawRoundedRect(rect(), radius, radius);
  if (hasFocus()) drawFocusRing(painter, rect(), radius, theme);
  painter.setPen(theme.primary);
  painter.drawText(rect(), Qt::AlignCenter, text());
}

LinkButton::LinkButton(const QString& label, QWidget* parent) : QPushButton(label, parent) {
  setCursor(Qt::PointingHandCursor);
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::TabFocus);
  setAutoDefault(true);  // the Return key clicks it
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const {
  return textSize(*this, text());
}

void LinkButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Theme& theme = themeOf(*this);
  if (hasFocus()) drawFocusLine(painter, rect(), theme);
  QFont underlined = font();
  underlined.setUnderline(underMouse() && !hasFocus());
  painter.setFont(underlined);
  painter.setPen(theme.secondary);
  painter.drawText(rect(), Qt::AlignCenter, text());
}

}  // namespace tarn
