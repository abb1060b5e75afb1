// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/menu_bar_icon.hpp"

#include <QPainter>

#include "ui/symbols.hpp"

namespace tarn::MenuBarIcon {

QImage image(const QString& symbolName, const QColor& color, int pixels) {
  QImage image(pixels, pixels, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  drawSymbol(painter, symbolName, QRectF(0, 0, pixels, pixels), color, SymbolWeight::semibold);
  return image;
}

QColor color(Tint tint) {
  switch (tint) {
    case Tint::green:
      return QColor(0x249a63);
    case Tint::orange:
      return QColor(0xe66100);
    case Tint::red:
      return QColor(0xe01b24);
    case Tint::secondary:
      break;
  }
  return QColor(0x7a7a80);
}

}  // namespace tarn::MenuBarIcon
