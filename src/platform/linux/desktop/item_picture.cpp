// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/desktop/item_picture.hpp"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <cmath>

#include "ui/symbols.hpp"

namespace tarn {
namespace {

// The height at which panels show an item, in points: what a gap of so many points means in a picture of any
// size.
constexpr double nominalHeight = 22.0;
constexpr double gapPoints = 3.0;
constexpr double textPoints = 13.0;

// As far from a light panel as from a dark one, 3.8:1 on both.
constexpr QRgb neutral = 0xff7b7b7f;

QImage transparentPicture(int width, int height) {
  QImage picture(width, height, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  return picture;
}

}  // namespace

QColor circleColor(Tint tint) {
  switch (tint) {
    case Tint::green:
      return {0x24, 0x9a, 0x63};
    case Tint::orange:
      return {0xe6, 0x61, 0x00};
    case Tint::red:
      return {0xe0, 0x1b, 0x24};
    case Tint::secondary:
      break;
  }
  return QColor::fromRgb(neutral);
}

QImage circlePicture(const MenuBarLabel& label, int pixels) {
  QImage picture = transparentPicture(pixels, pixels);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  drawSymbol(painter, label.symbolName, QRectF(picture.rect()), circleColor(label.tint),
             SymbolWeight::semibold);
  return picture;
}

QImage labelledPicture(const MenuBarLabel& label, int pixels) {
  if (!label.text || label.text->isEmpty()) return circlePicture(label, pixels);
  const double scale = pixels / nominalHeight;
  QFont font = QGuiApplication::font();
  font.setPixelSize(static_cast<int>(std::lround(textPoints * scale)));
  font.setWeight(QFont::Medium);
  const QFontMetricsF metrics(font);
  const double textLeft = pixels + gapPoints * scale;
  const int width = static_cast<int>(std::ceil(textLeft + metrics.horizontalAdvance(*label.text) + scale));

  QImage picture = transparentPicture(width, pixels);
  QPainter painter(&picture);
  painter.drawImage(0, 0, circlePicture(label, pixels));
  painter.setFont(font);
  painter.setPen(QColor::fromRgb(neutral));
  painter.drawText(QRectF(textLeft, 0, width - textLeft, pixels), Qt::AlignLeft | Qt::AlignVCenter,
                   *label.text);
  return picture;
}

}  // namespace tarn
