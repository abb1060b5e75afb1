// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <initializer_list>

#include "ui/symbols/symbols.hpp"

namespace tarn {

/// Collects the area of one symbol from strokes with round ends, filled areas and holes.
///
/// Lengths are in units of the 16-unit grid. The origin is in the centre and y points down. The
/// symbol's size in pixels is used to align straight edges to pixel boundaries.
class SymbolSketch {
 public:
  /// The side of the grid.
  static constexpr double gridUnits = 16;

  /// A sketch for a square of `pixels` pixels, at least 1.
  SymbolSketch(int pixels, SymbolWeight weight);

  /// The stroke width of the symbol's weight.
  double strokeWidth() const { return strokeWidth_; }

  /// The position of the pixel boundary nearest to `position`. snapped(-x) is -snapped(x).
  double snapped(double position) const;

  /// `length` rounded to a whole number of pixels.
  double wholePixels(double length) const;

  /// Strokes with round ends and joins. The default width is strokeWidth().
  void stroke(const QPainterPath& path, double width);
  void stroke(const QPainterPath& path) { stroke(path, strokeWidth_); }
  void strokeLine(std::initializer_list<QPointF> points, double width);
  void strokeLine(std::initializer_list<QPointF> points) { strokeLine(points, strokeWidth_); }

  /// Strokes a rounded box, or a ring around the origin. The outer edges are snapped to pixel boundaries.
  void strokeBox(const QRectF& outer, double radius);
  void strokeRing(double outerRadius);

  /// Fills one closed outline.
  void fill(const QPainterPath& path);
  void fillBox(const QRectF& box, double radius);
  void fillDisc(const QPointF& centre, double radius);

  /// Fills the polygon of `corners`. Each corner is replaced by a curve, which begins and ends up to
  /// `rounding` from the corner.
  void fillPolygon(const QPolygonF& corners, double rounding);

  /// Cuts a transparent hole into a filled area. No other filled area may overlap the hole.
  void cutDisc(const QPointF& centre, double radius);

  /// `box` with every edge moved to the nearest pixel boundary.
  QRectF snappedBox(const QRectF& box) const;

  /// The area collected so far. Fill it with the path's fill rule.
  const QPainterPath& area() const { return area_; }

 private:
  double pixelsPerUnit_;
  double firstBoundary_;  ///< distance from the centre to the nearest pixel boundary, 0 or 0.5 pixels
  double strokeWidth_;
  QPainterPath area_;
};

}  // namespace tarn
