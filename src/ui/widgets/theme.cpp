// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/theme.hpp"

#include <QFontDatabase>
#include <QWidget>

namespace tarn {

namespace {

QColor translucent(QColor color, double opacity) {
  color.setAlphaF(static_cast<float>(opacity));
  return color;
}

Theme makeLight() {
  return {.background = QColor(0xfafafb),
          .border = translucent(Qt::black, 0.16),
          .primary = QColor(0x1d1d1f),
          .secondary = QColor(0x5c5c62),
          .tertiary = QColor(0x86868c),
          .divider = translucent(Qt::black, 0.09),
          .highlight = translucent(Qt::black, 0.06),
          .control = translucent(Qt::black, 0.065),
          .controlHover = translucent(Qt::black, 0.11),
          .controlSelected = QColor(Qt::white),
          .accent = QColor(0x3584e4),
          .focusRing = QColor(0x2a7ade),
          .green = QColor(0x26a269),
          .orange = QColor(0xe66100),
          .red = QColor(0xe01b24)};
}

Theme makeDark() {
  return {.background = QColor(0x2a2a2d),
          .border = translucent(Qt::white, 0.16),
          .primary = QColor(0xf4f4f6),
          .secondary = QColor(0xb4b4ba),
          .tertiary = QColor(0x8e8e94),
          .divider = translucent(Qt::white, 0.12),
          .highlight = translucent(Qt::white, 0.07),
          .control = translucent(Qt::white, 0.075),
          .controlHover = translucent(Qt::white, 0.13),
          .controlSelected = QColor(0x5e5e63),
          .accent = QColor(0x3584e4),
          .focusRing = QColor(0x7ab6ff),
          .green = QColor(0x33d17a),
          .orange = QColor(0xff9a3c),
          .red = QColor(0xff6a5e)};
}

}  // namespace

const Theme& Theme::light() {
  static const Theme theme = makeLight();
  return theme;
}

const Theme& Theme::dark() {
  static const Theme theme = makeDark();
  return theme;
}

QColor Theme::color(TextStyle style) const {
  switch (style) {
    case TextStyle::primary:
      return primary;
    case TextStyle::secondary:
      return secondary;
    case TextStyle::tertiary:
      break;
  }
  return tertiary;
}

QColor Theme::color(Tint tint) const {
  switch (tint) {
    case Tint::green:
      return green;
    case Tint::orange:
      return orange;
    case Tint::red:
      return red;
    case Tint::secondary:
      break;
  }
  return secondary;
}

QPalette Theme::palette() const {
  QPalette palette;
  palette.setColor(QPalette::Window, background);
  palette.setColor(QPalette::Base, background);
  for (const TextStyle style : {TextStyle::primary, TextStyle::secondary, TextStyle::tertiary}) {
    palette.setColor(paletteRole(style), color(style));
  }
  palette.setColor(QPalette::Highlight, accent);
  return palette;
}

const Theme& themeOf(const QWidget& widget) {
  const bool isDark = widget.palette().color(QPalette::Window).lightness() < 128;
  return isDark ? Theme::dark() : Theme::light();
}

QPalette::ColorRole paletteRole(TextStyle style) {
  switch (style) {
    case TextStyle::primary:
      return QPalette::WindowText;
    case TextStyle::secondary:
      return QPalette::PlaceholderText;
    case TextStyle::tertiary:
      break;
  }
  return QPalette::Mid;
}

QFont systemFont(int size, QFont::Weight weight) {
  QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
  font.setPixelSize(size);
  font.setWeight(weight);
  return font;
}

}  // namespace tarn
