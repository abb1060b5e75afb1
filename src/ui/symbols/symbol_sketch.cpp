// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/symbols/symbol_sketch.hpp"

#include <QLineF>
#include <QPainterPathStroker>
#include <algorithm>
#include <cmath>

namespace tarn {

namespace {

constexpr double regularStroke = 1.3;
constexpr double semiboldStroke = 1.6;

/// Grid units. Curves are smooth with it when the symbol is drawn much larger than 16 pixels.
constexpr double curveTolerance = 0.02;

/// Twice the area of `outline`. Negative if it is counterclockwise on the screen.
double signedArea(const QPolygonF& outline) {
  double sum = 0;
  for (qsizetype index = 0; index < outline.size(); ++index) {
    const QPointF& point = outline[index];
    const QPointF& next = outline[(index + 1) % outline.size()];
    sum += point.x() * next.y() - next.x() * point.y();
  }
  return sum;
}

QPainterPath clockwise(const QPainterPath& path) {
  return signedArea(path.toFillPolygon()) < 0 ? path.toReversed() : path;
}

/// The closed polygon of `corners`. Each corner is replaced by a curve, which begins and ends up to
/// `rounding` from the corner.
QPainterPath roundedPolygon(const QPolygonF& corners, double rounding) {
  const auto towards = [rounding](const QPointF& corner, const QPointF& neighbour) {
    const QLineF side(corner, neighbour);
    return side.pointAt(std::min(rounding / side.length(), 0.5));
  };
  QPainterPath path;
  for (qsizetype index = 0; index < corners.size(); ++index) {
    const QPointF& corner = corners[index];
    const QPointF entry = towards(corner, corners[(index + corners.size() - 1) % corners.size()]);
    const QPointF exit = towards(corner, corners[(index + 1) % corners.size()]);
    if (index == 0) {
      path.moveTo(entry);
    } else {
      path.lineTo(entry);
    }
    path.quadTo(corner, exit);
  }
  path.closeSubpath();
  return path;
}

}  // namespace

SymbolSketch::SymbolSketch(int pixels, SymbolWeight weight)
    : pixelsPerUnit_(pixels / gridUnits),
      firstBoundary_(pixels % 2 == 0 ? 0.0 : 0.5),
      strokeWidth_(weight == SymbolWeight::semibold ? semiboldStroke : regularStroke) {
  area_.setFillRule(Qt::WindingFill);
}

double SymbolSketch::snapped(double position) const {
  const double pixels = std::abs(position) * pixelsPerUnit_;
  const double boundary = std::round(pixels - firstBoundary_) + firstBoundary_;
  return std::copysign(boundary / pixelsPerUnit_, position);
}

double SymbolSketch::wholePixels(double length) const {
  return std::round(length * pixelsPerUnit_) / pixelsPerUnit_;
}

QRectF SymbolSketch::snappedBox(const QRectF& box) const {
  return {QPointF(snapped(box.left()), snapped(box.top())),
          QPointF(snapped(box.right()), snapped(box.bottom()))};
}

// Filled outlines and QPainterPathStroker's outlines are clockwise, holes are counterclockwise. The winding
// fill rule then unites overlapping areas and leaves holes open. QPainterPath::united() and subtracted() are
// much slower.

void SymbolSketch::stroke(const QPainterPath& path, double width) {
  QPainterPathStroker stroker;
  stroker.setWidth(width);
  stroker.setCapStyle(Qt::RoundCap);
  stroker.setJoinStyle(Qt::RoundJoin);
  stroker.setCurveThreshold(curveTolerance);
  area_.addPath(stroker.createStroke(path));
}

void SymbolSketch::fill(const QPainterPath& path) {
  area_.addPath(clockwise(path));
}

void SymbolSketch::strokeLine(std::initializer_list<QPointF> points, double width) {
  QPainterPath path;
  path.addPolygon(QPolygonF(QList<QPointF>(points)));
  stroke(path, width);
}

void SymbolSketch::strokeBox(const QRectF& outer, double radius) {
  const double inset = strokeWidth_ / 2;
  QPainterPath path;
  path.addRoundedRect(snappedBox(outer).adjusted(inset, inset, -inset, -inset), radius - inset,
                      radius - inset);
  stroke(path);
}

void SymbolSketch::strokeRing(double outerRadius) {
  const double radius = snapped(outerRadius) - strokeWidth_ / 2;
  QPainterPath path;
  path.addEllipse(QPointF(), radius, radius);
  stroke(path);
}

void SymbolSketch::fillBox(const QRectF& box, double radius) {
  QPainterPath path;
  path.addRoundedRect(box, radius, radius);
  fill(path);
}

void SymbolSketch::fillDisc(const QPointF& centre, double radius) {
  QPainterPath path;
  path.addEllipse(centre, radius, radius);
  fill(path);
}

void SymbolSketch::fillPolygon(const QPolygonF& corners, double rounding) {
  fill(roundedPolygon(corners, rounding));
}

void SymbolSketch::cutDisc(const QPointF& centre, double radius) {
  QPainterPath path;
  path.addEllipse(centre, radius, radius);
  area_.addPath(clockwise(path).toReversed());
}

}  // namespace tarn
