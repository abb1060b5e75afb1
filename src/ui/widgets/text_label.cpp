// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/text_label.hpp"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <optional>

namespace tarn {

namespace {

/// The width of the text, rounded up: in a narrower label it would be elided.
int widthOf(const QString& text, const QFont& font) {
  return static_cast<int>(std::ceil(QFontMetricsF(font).horizontalAdvance(text)));
}

int advanceOf(const QString& character, const QFontMetrics& metrics) {
  // For a single QChar Qt reads the advance without shaping the text.
  return character.size() == 1 ? metrics.horizontalAdvance(character.front())
                               : metrics.horizontalAdvance(character);
}

bool isRightToLeftLetter(char32_t letter) {
  const QChar::Direction direction = QChar::direction(letter);
  return direction == QChar::DirR || direction == QChar::DirAL;
}

/// The zero of the script that a digit belongs to.
char32_t zeroOf(char32_t digit) {
  return digit - static_cast<char32_t>(QChar::digitValue(digit));
}

/// Width of the widest of the ten digits of a script.
int widestDigit(char32_t zero, const QFontMetrics& metrics) {
  int widest = 0;
  for (char32_t digit = zero; digit < zero + 10; ++digit) {
    widest = std::max(widest, advanceOf(QString::fromUcs4(&digit, 1), metrics));
  }
  return widest;
}

int totalWidth(const auto& cells) {
  int width = 0;
  for (const auto& cell : cells) width += cell.width;
  return width;
}

}  // namespace

TextLabel::TextLabel(const QFont& font, TextStyle style, Overflow overflow, QWidget* parent)
    : QLabel(parent), overflow_(overflow) {
  setTextFormat(Qt::PlainText);
  setTextInteractionFlags(Qt::NoTextInteraction);
  setFont(font);
  setForegroundRole(paletteRole(style));
  setWordWrap(overflow == Overflow::wrap);
  setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

QSize TextLabel::sizeHint() const {
  if (overflow_ == Overflow::wrap) return QLabel::sizeHint();
  return {widthOf(text(), font()), QFontMetrics(font()).height()};
}

QSize TextLabel::minimumSizeHint() const {
  if (overflow_ == Overflow::wrap) return QLabel::minimumSizeHint();
  return {0, QFontMetrics(font()).height()};
}

Qt::LayoutDirection TextLabel::textDirection() const {
  // A text that begins with a separator continues the label before it.
  if (text().startsWith(u'·')) return layoutDirection();
  // The first letter decides. The direction marks that some locales put around figures are ignored: they
  // would reverse an English sentence.
  for (const char32_t code : text().toUcs4()) {
    if (QChar::isLetter(code)) return isRightToLeftLetter(code) ? Qt::RightToLeft : Qt::LeftToRight;
  }
  return Qt::LeftToRight;
}

void TextLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  painter.setLayoutDirection(textDirection());
  const auto flags =
      static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment()) | Qt::AlignAbsolute);
  if (overflow_ == Overflow::wrap) {
    painter.drawText(rect(), flags | Qt::TextWordWrap, text());
  } else {
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
    painter.drawText(rect(), flags | Qt::TextSingleLine, shown);
  }
}

TextLabel* makePlaceholder(const QString& text) {
  constexpr int padding = 8;
  auto* label = new TextLabel(systemFont(12), TextStyle::secondary, Overflow::elide);
  label->setText(text);
  label->setAlignment(Qt::AlignCenter);
  label->setFixedHeight(label->sizeHint().height() + 2 * padding);
  return label;
}

FigureLabel::FigureLabel(const QFont& font, TextStyle style, QWidget* parent)
    : TextLabel(font, style, Overflow::elide, parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

std::vector<FigureLabel::Cell> FigureLabel::cells() const {
  const QFontMetrics metrics(font());
  std::vector<Cell> cells;
  std::optional<char32_t> measuredZero;
  int digitWidth = 0;
  for (const char32_t code : text().toUcs4()) {
    if (QChar::category(code) == QChar::Other_Format) continue;  // a direction mark: has no width
    Cell& cell = cells.emplace_back();
    cell.character = QString::fromUcs4(&code, 1);
    cell.advance = cell.width = advanceOf(cell.character, metrics);
    if (!QChar::isDigit(code)) continue;
    const char32_t zero = zeroOf(code);
    if (zero != measuredZero) digitWidth = widestDigit(zero, metrics);
    measuredZero = zero;
    cell.width = digitWidth;
  }
  return cells;
}

QSize FigureLabel::sizeHint() const {
  return {totalWidth(cells()), QFontMetrics(font()).height()};
}

void FigureLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  painter.setLayoutDirection(Qt::LeftToRight);
  const std::vector<Cell> shown = cells();
  int x = isRightToLeft() ? 0 : width() - totalWidth(shown);
  for (const Cell& cell : shown) {
    painter.drawText(QRect(x + (cell.width - cell.advance) / 2, 0, cell.advance + 1, height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                     cell.character);
    x += cell.width;
  }
}

}  // namespace tarn
