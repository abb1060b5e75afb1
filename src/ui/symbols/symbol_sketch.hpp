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

/// Collects one symbol's area from round-ended strokes, filled areas and holes.
///
/// Lengths are units of the 16-unit grid, with the origin in the middle and y downwards. The sketch knows how
/// many pixels the symbol will cover, so that straight edges can be put on pixel boundaries.
class SymbolSketch {
 public:
  /// The side of the grid.
  static constexpr double gridUnits = 16;

  /// A sketch for a square of `pixels` pixels, at least 1.
  SymbolSketch(int pixels, SymbolWeight weight);

  /// The stroke width of the weight asked for.
  double strokeWidth() const { return strokeWidth_; }

  /// The position of the pixel boundary nearest to `position`. Positions that mirror each other stay so.
  double snapped(double position) const;

  /// `length` rounded to a whole number of pixels.
  double wholePixels(double length) const;

  /// Strokes with round ends and joins; without a width, in the symbol's own.
  void stroke(const QPainterPath& path, double width);
  void stroke(const QPainterPath& path) { stroke(path, strokeWidth_); }
  void strokeLine(std::initializer_list<QPointF> points, double width);
  void strokeLine(std::initializer_list<QPointF> points) { strokeLine(points, strokeWidth_); }

  /// Strokes a rounded box, and a ring around the origin, whose outer edges are the snapped ones given.
  void strokeBox(const QRectF& outer, double radius);
  void strokeRing(double outerRadius);

  /// Fills one closed outline.
  void fill(const QPainterPath& path);
  void fillBox(const QRectF& box, double radius);
  void fillDisc(const QPointF& centre, double radius);

  /// Fills the polygon of `corners`; each corner is cut back by up to `rounding` and replaced by a curve.
  void fillPolygon(const QPolygonF& corners, double rounding);

  /// Makes a see-through hole in a filled area. What lies in the hole may be covered once, not twice.
  void cutDisc(const QPointF& centre, double radius);

  /// `box` with each edge on a pixel boundary.
  QRectF snappedBox(const QRectF& box) const;

  /// Everything sketched so far, to be filled by its own rule.
  const QPainterPath& area() const { return area_; }

 private:
  double pixelsPerUnit_;
  double firstBoundary_;  ///< distance in pixels from the middle to the nearest pixel boundary: 0 or one half
  double strokeWidth_;
  QPainterPath area_;
};

}  // namespace tarn
