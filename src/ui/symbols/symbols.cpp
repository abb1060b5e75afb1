// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/symbols/symbols.hpp"

#include <QLatin1String>
#include <QPainter>
#include <QPolygonF>
#include <QSizeF>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <numbers>

#include "ui/symbols/symbol_sketch.hpp"

namespace tarn {

namespace {

/// The status circles have a wider margin than other symbols, because they are shown alone.
constexpr double statusRadius = 6;
constexpr double discRadius = 6.7;

/// Chevrons and check marks are shown at about half the size of other symbols. With a wider stroke their
/// lines look equally thick.
constexpr double smallSymbolStrokeFactor = 1.5;

QRectF squareAround(const QPointF& centre, double halfSide) {
  return {centre.x() - halfSide, centre.y() - halfSide, 2 * halfSide, 2 * halfSide};
}

void circle(SymbolSketch& sketch) {
  sketch.strokeRing(statusRadius);
}

void circleLeftHalfFilled(SymbolSketch& sketch) {
  sketch.strokeRing(statusRadius);
  const double radius = sketch.snapped(statusRadius) - sketch.strokeWidth() / 2;
  QPainterPath leftHalf(QPointF(0, -radius));
  leftHalf.arcTo(squareAround({}, radius), 90, 180);
  leftHalf.closeSubpath();
  sketch.fill(leftHalf);
}

void circleFill(SymbolSketch& sketch) {
  sketch.fillDisc({}, sketch.snapped(statusRadius));
}

void ellipsisCircleFill(SymbolSketch& sketch) {
  sketch.fillDisc({}, sketch.snapped(discRadius));
  const double step = sketch.wholePixels(3.2);
  for (const double x : {-step, 0.0, step}) sketch.cutDisc({x, 0}, 1.05);
}

void gearshapeFill(SymbolSketch& sketch) {
  constexpr int teeth = 8;
  constexpr double rootRadius = 5.4;
  constexpr double tipRadius = 7.2;
  QPolygonF outline;
  const auto addCorner = [&](double radius, double turn) {
    const double angle = turn * 2 * std::numbers::pi / teeth;
    outline << QPointF(radius * std::sin(angle), -radius * std::cos(angle));
  };
  for (int tooth = 0; tooth < teeth; ++tooth) {
    addCorner(rootRadius, tooth - 0.30);
    addCorner(tipRadius, tooth - 0.17);
    addCorner(tipRadius, tooth + 0.17);
    addCorner(rootRadius, tooth + 0.30);
  }
  sketch.fillPolygon(outline, 0.7);
  sketch.cutDisc({}, 2.3);
}

void memorychip(SymbolSketch& sketch) {
  const double bodyHalfHeight = 4.3;
  sketch.strokeBox({-7, -bodyHalfHeight, 14, 2 * bodyHalfHeight}, 2);
  const double inset = sketch.strokeWidth() / 2;
  const double root = sketch.snapped(bodyHalfHeight);
  const double tip = sketch.snapped(6.9) - inset;
  const double step = sketch.wholePixels(3.2);
  for (const double x : {-1.5 * step, -0.5 * step, 0.5 * step, 1.5 * step}) {
    sketch.strokeLine({{x, -root}, {x, -tip}});
    sketch.strokeLine({{x, root}, {x, tip}});
  }
}

void cpu(SymbolSketch& sketch) {
  const double bodyHalfSide = 4.9;
  sketch.strokeBox(squareAround({}, bodyHalfSide), 1.8);
  const double inset = sketch.strokeWidth() / 2;
  const double root = sketch.snapped(bodyHalfSide);
  const double tip = sketch.snapped(7.1) - inset;
  const double step = sketch.wholePixels(3.4);
  for (const double along : {-0.5 * step, 0.5 * step}) {
    for (const double side : {-1.0, 1.0}) {
      sketch.strokeLine({{along, side * root}, {along, side * tip}});
      sketch.strokeLine({{side * root, along}, {side * tip, along}});
    }
  }
  sketch.fillBox(sketch.snappedBox(squareAround({}, 1.6)), 0.4);
}

void desktopcomputer(SymbolSketch& sketch) {
  const QRectF screen(-7.1, -6.3, 14.2, 10);
  sketch.strokeBox(screen, 2);
  const double inset = sketch.strokeWidth() / 2;
  const double foot = sketch.snapped(6.6) - inset;
  sketch.strokeLine({{0, sketch.snapped(screen.bottom())}, {0, foot}});
  sketch.strokeLine({{-2.6, foot}, {2.6, foot}});
}

void internaldrive(SymbolSketch& sketch) {
  sketch.strokeBox({-7.1, -4.7, 14.2, 9.4}, 2.4);
  const double y = sketch.snapped(2.1) - sketch.strokeWidth() / 2;
  sketch.strokeLine({{-3.8, y}, {0.4, y}});
  sketch.fillDisc({3.7, y}, 0.95);
}

constexpr QRectF batteryBody(-7.5, -3.9, 12.8, 7.8);
constexpr double batteryRadius = 2.3;

void batteryContact(SymbolSketch& sketch) {
  const double x = sketch.snapped(7.6) - sketch.strokeWidth() / 2;
  sketch.strokeLine({{x, -0.9}, {x, 0.9}});
}

void battery(SymbolSketch& sketch, double level) {
  sketch.strokeBox(batteryBody, batteryRadius);
  batteryContact(sketch);
  if (level <= 0) return;
  const double gap = sketch.strokeWidth() + 0.95;
  QRectF charge = sketch.snappedBox(sketch.snappedBox(batteryBody).adjusted(gap, gap, -gap, -gap));
  charge.setWidth(sketch.wholePixels(charge.width() * level));
  sketch.fillBox(charge, 0.7);
}

/// The outline of the body has gaps above and below the bolt. The charge level is not drawn: the bolt would
/// be hard to recognise in front of it at text sizes.
void batteryCharging(SymbolSketch& sketch) {
  const double inset = sketch.strokeWidth() / 2;
  const QRectF body = sketch.snappedBox(batteryBody).adjusted(inset, inset, -inset, -inset);
  const QSizeF corner(2 * (batteryRadius - inset), 2 * (batteryRadius - inset));
  const double middle = body.center().x();

  QPainterPath left(QPointF(middle - 2.1, body.top()));
  left.arcTo({body.topLeft(), corner}, 90, 90);
  left.arcTo({QPointF(body.left(), body.bottom() - corner.height()), corner}, 180, 90);
  left.lineTo(middle - 3.6, body.bottom());
  QPainterPath right(QPointF(middle + 2.1, body.bottom()));
  right.arcTo({QPointF(body.right() - corner.width(), body.bottom() - corner.height()), corner}, 270, 90);
  right.arcTo({QPointF(body.right() - corner.width(), body.top()), corner}, 0, 90);
  right.lineTo(middle + 3.6, body.top());
  sketch.stroke(left);
  sketch.stroke(right);
  batteryContact(sketch);

  QPolygonF bolt{{1.2, -5.6}, {-3, 1.2}, {-0.5, 1.2}, {-1.2, 5.6}, {3, -1.2}, {0.5, -1.2}};
  bolt.translate(middle, 0);
  sketch.fillPolygon(bolt, 0.7);
}

void thermometerMedium(SymbolSketch& sketch) {
  const double inset = sketch.strokeWidth() / 2;
  const double tube = sketch.snapped(3) - inset;
  const double bulb = sketch.snapped(4.2) - inset;
  const double top = sketch.snapped(-7.3) + inset;
  const double bulbCentre = sketch.snapped(7.3) - sketch.snapped(4.2);
  const double shoulder = std::acos(std::min(tube / bulb, 1.0)) * 180 / std::numbers::pi;  // degrees

  QPainterPath glass;
  const QRectF bulbSquare = squareAround({0, bulbCentre}, bulb);
  glass.arcMoveTo(bulbSquare, shoulder);
  glass.arcTo(bulbSquare, shoulder, -180 - 2 * shoulder);
  glass.arcTo(squareAround({0, top + tube}, tube), 180, -180);
  glass.closeSubpath();
  sketch.stroke(glass);
  sketch.strokeLine({{0, -1.5}, {0, bulbCentre}}, 1.1);
  sketch.fillDisc({0, bulbCentre}, 1.6);
}

void clock(SymbolSketch& sketch) {
  sketch.strokeRing(discRadius);
  sketch.strokeLine({{0, -3.7}, {0, 0}, {2.5, 1.7}});
}

void strokeBold(SymbolSketch& sketch, std::initializer_list<QPointF> points) {
  sketch.strokeLine(points, smallSymbolStrokeFactor * sketch.strokeWidth());
}

void chevronRight(SymbolSketch& sketch) {
  strokeBold(sketch, {{-2.6, -5.2}, {2.6, 0}, {-2.6, 5.2}});
}

void chevronLeft(SymbolSketch& sketch) {
  strokeBold(sketch, {{2.6, -5.2}, {-2.6, 0}, {2.6, 5.2}});
}

void chevronDown(SymbolSketch& sketch) {
  strokeBold(sketch, {{-5.2, -2.6}, {0, 2.6}, {5.2, -2.6}});
}

void checkmark(SymbolSketch& sketch) {
  strokeBold(sketch, {{-5.2, 0.6}, {-1.7, 4.3}, {5.2, -4.4}});
}

/// Adds one symbol's strokes and areas to an empty sketch.
using SymbolShape = void (*)(SymbolSketch&);

struct NamedShape {
  QLatin1String name;
  SymbolShape shape;
};

constexpr std::array namedShapes{
    NamedShape{QLatin1String("circle"), circle},
    NamedShape{QLatin1String("circle.lefthalf.filled"), circleLeftHalfFilled},
    NamedShape{QLatin1String("circle.fill"), circleFill},
    NamedShape{QLatin1String("ellipsis.circle.fill"), ellipsisCircleFill},
    NamedShape{QLatin1String("gearshape.fill"), gearshapeFill},
    NamedShape{QLatin1String("memorychip"), memorychip},
    NamedShape{QLatin1String("cpu"), cpu},
    NamedShape{QLatin1String("desktopcomputer"), desktopcomputer},
    NamedShape{QLatin1String("internaldrive"), internaldrive},
    NamedShape{QLatin1String("battery.0"), [](SymbolSketch& sketch) { battery(sketch, 0); }},
    NamedShape{QLatin1String("battery.25"), [](SymbolSketch& sketch) { battery(sketch, 0.25); }},
    NamedShape{QLatin1String("battery.50"), [](SymbolSketch& sketch) { battery(sketch, 0.5); }},
    NamedShape{QLatin1String("battery.75"), [](SymbolSketch& sketch) { battery(sketch, 0.75); }},
    NamedShape{QLatin1String("battery.100"), [](SymbolSketch& sketch) { battery(sketch, 1); }},
    NamedShape{QLatin1String("battery.100.bolt"), batteryCharging},
    NamedShape{QLatin1String("thermometer.medium"), thermometerMedium},
    NamedShape{QLatin1String("clock"), clock},
    NamedShape{QLatin1String("chevron.right"), chevronRight},
    NamedShape{QLatin1String("chevron.left"), chevronLeft},
    NamedShape{QLatin1String("chevron.down"), chevronDown},
    NamedShape{QLatin1String("checkmark"), checkmark},
};

/// The shape called `name`; null for an unknown name.
SymbolShape symbolShape(QStringView name) {
  const auto* const match =
      std::ranges::find_if(namedShapes, [&](const NamedShape& candidate) { return name == candidate.name; });
  return match == namedShapes.end() ? nullptr : match->shape;
}

constexpr double largestSide = 4096;  ///< pixels

/// `rect`'s side in whole pixels of the painter's device; 0 when it is smaller than one pixel or larger than
/// `largestSide`.
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

  // The sketch is aligned to pixels, so its square must start on a pixel boundary.
  const double half = pixels / 2.0;
  const QPointF exact = toDevice.map(rect.center());
  const QPointF centre(std::round(exact.x() - half) + half, std::round(exact.y() - half) + half);
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
