// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/text_label.hpp"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tarn {

namespace {

/// Width that the text needs; a fraction of a pixel too little would cut it.
int widthOf(const QString& text, const QFont& font) {
  return static_cast<int>(std::ceil(QFontMetricsF(font).horizontalAdvance(text)));
}

}  // namespace

TextLabel::TextLabel(const QFont& font, TextStyle style, Overflow overflow, QWidget* parent)
    : QLabel(parent), overflow_(overflow) {
  setTextFormat(Qt::PlainText);
  setTextInteractionFlags(Qt::NoTextInteraction);
  setFont(font);
  setForegroundRole(paletteRole(style));
  setWordWrap(overflow == Overflow::wraps);
  setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

QSize TextLabel::sizeHint() const {
  if (overflow_ == Overflow::wraps) return QLabel::sizeHint();
  return {widthOf(text(), font()), QFontMetrics(font()).height()};
}

QSize TextLabel::minimumSizeHint() const {
  if (overflow_ == Overflow::wraps) return QLabel::minimumSizeHint();
  return {0, QFontMetrics(font()).height()};
}

void TextLabel::paintEvent(QPaintEvent* event) {
  if (overflow_ == Overflow::wraps) {
    QLabel::paintEvent(event);
    return;
  }
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
  painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shown);
}

TextLabel* makePlaceholder(const QString& text) {
  constexpr int padding = 8;
  auto* label = new TextLabel(systemFont(12), TextStyle::secondary, Overflow::cuts);
  label->setText(text);
  label->setAlignment(Qt::AlignCenter);
  label->setFixedHeight(label->sizeHint().height() + 2 * padding);
  return label;
}

FigureLabel::FigureLabel(const QFont& font, TextStyle style, QWidget* parent)
    : TextLabel(font, style, Overflow::cuts, parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

int FigureLabel::digitWidth() const {
  const QFontMetrics metrics(font());
  int widest = 0;
  for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
    widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
  }
  return widest;
}

int FigureLabel::textWidth() const {
  const QFontMetrics metrics(font());
  const int digit = digitWidth();
  int width = 0;
  for (const QChar character : text()) {
    width += character.isDigit() ? digit : metrics.horizontalAdvance(character);
  }
  return width;
}

QSize FigureLabel::sizeHint() const {
  return {textWidth(), QFontMetrics(font()).height()};
}

void FigureLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  const QFontMetrics metrics(font());
  const int digit = digitWidth();
  int x = width() - textWidth();
  for (const QChar character : text()) {
    const int advance = metrics.horizontalAdvance(character);
    const int cell = character.isDigit() ? digit : advance;
    painter.drawText(QRect(x + (cell - advance) / 2, 0, advance + 1, height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip, character);
    x += cell;
  }
}

}  // namespace tarn
