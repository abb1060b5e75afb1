// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/menu_bar/menu_bar_icon.hpp"

#include <QPainter>

#include "ui/symbols/symbols.hpp"

namespace tarn::MenuBarIcon {

QImage image(const QString& symbolName, const QColor& color, int pixels) {
  // In other formats the toolkit fills shapes with threads of its own, for want of a way that is fast enough.
  QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  drawSymbol(painter, symbolName, QRectF(0, 0, pixels, pixels), color, SymbolWeight::semibold);
  return image;
}

QColor color(Tint tint) {
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
  return {0x7a, 0x7a, 0x80};
}

}  // namespace tarn::MenuBarIcon
