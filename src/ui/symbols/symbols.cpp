// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/symbols/symbols.hpp"

#include <QPainter>
#include <QTransform>
#include <algorithm>
#include <cmath>

#include "ui/symbols/symbol_shapes.hpp"

namespace tarn {

namespace {

constexpr double largestSide = 4096;  // pixels

/// `rect`'s side in whole pixels of the painter's device; 0 when the rectangle has no area to draw in.
int sideInPixels(const QTransform& toDevice, const QRectF& rect) {
  const double side = std::min(rect.width(), rect.height()) * std::hypot(toDevice.m11(), toDevice.m12());
  constexpr double roundingError = 0.01;
  return side >= 1 - roundingError && side <= largestSide ? static_cast<int>(side + roundingError) : 0;
}

}  // namespace

bool drawSymbol(QPainter& painter, const QString& name, const QRectF& rect, const QColor& color,
                SymbolWeight weight) {
  const SymbolShape shape = symbolShape(name);
  if (shape == nullptr) return false;

  const QTransform toDevice = painter.deviceTransform();
  const int pixels = sideInPixels(toDevice, rect);
  if (pixels == 0) return true;
  SymbolSketch sketch(pixels, weight);
  shape(sketch);

  // The sketch is aligned to pixels, so its square has to start on one, wherever the caller's rectangle does.
  const double half = pixels / 2.0;
  const QPointF wanted = toDevice.map(rect.center());
  const QPointF centre(std::round(wanted.x() - half) + half, std::round(wanted.y() - half) + half);
  const double unit = pixels / SymbolSketch::gridUnits / std::hypot(toDevice.m11(), toDevice.m12());

  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(toDevice.inverted().map(centre));
  painter.scale(unit, unit);
  painter.fillPath(sketch.area(), color);
  painter.restore();
  return true;
}

QPixmap symbolPixmap(const QString& name, double size, const QColor& color, double scale,
                     SymbolWeight weight) {
  const double side = std::round(size * scale);
  if (!(scale > 0 && side >= 1 && side <= largestSide)) return {};
  QPixmap pixmap(static_cast<int>(side), static_cast<int>(side));
  pixmap.setDevicePixelRatio(scale);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  drawSymbol(painter, name, QRectF(0, 0, side / scale, side / scale), color, weight);
  return pixmap;
}

}  // namespace tarn
