// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/credit_label.hpp"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QStringList>
#include <cmath>

namespace tarn {

namespace {

constexpr char16_t emojiSelector = 0xfe0f;

/// The font for emoji beside `text`; the same where no font has them in colour.
QFont emojiFontBeside(const QFont& text) {
  const QStringList families = QFontDatabase::families();
  QFont font = text;
  for (const QString& family : {QStringLiteral("Noto Color Emoji"), QStringLiteral("Apple Color Emoji")}) {
    if (!families.contains(family)) continue;
    font.setFamily(family);
    // One glyph needs no shaping, and the tables for it are as large as the glyphs are many.
    font.setStyleStrategy(QFont::PreferNoShaping);
    break;
  }
  return font;
}

}  // namespace

CreditLabel::CreditLabel(const QFont& font, TextStyle style, QWidget* parent)
    : TextLabel(font, style, Overflow::cuts, parent), emojiFont_(emojiFontBeside(font)) {}

std::vector<CreditLabel::Run> CreditLabel::runs() const {
  std::vector<Run> runs;
  QString plain;
  for (const QChar character : text()) {
    plain += character;
    if (character.unicode() != emojiSelector) continue;
    // The selector makes an emoji of the character before it.
    const QString emoji = plain.right(2);
    plain.chop(emoji.size());
    runs.push_back({plain, false});
    runs.push_back({emoji, true});
    plain.clear();
  }
  runs.push_back({plain, false});
  return runs;
}

QSize CreditLabel::sizeHint() const {
  double width = 0;
  for (const Run& run : runs()) width += QFontMetricsF(fontFor(run)).horizontalAdvance(run.text);
  return {static_cast<int>(std::ceil(width)), QFontMetrics(font()).height()};
}

void CreditLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  painter.setLayoutDirection(layoutDirection());
  const double baseline = (height() + fontMetrics().ascent() - fontMetrics().descent()) / 2.0;
  double x = 0;
  for (const Run& run : runs()) {
    painter.setFont(fontFor(run));
    painter.drawText(QPointF(x, baseline), run.text);
    x += QFontMetricsF(fontFor(run)).horizontalAdvance(run.text);
  }
}

}  // namespace tarn
