// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/painting.hpp"

#include <QPainterPath>
#include <array>

namespace tarn {

namespace {

constexpr double focusRingWeight = 2;

struct Corner {
  QRect square;
  QPoint centre;
  int startAngle;  ///< degrees, counterclockwise from three o'clock
};

std::array<Corner, 4> cornersOf(const QRect& frame, int radius) {
  const int left = frame.x();
  const int top = frame.y();
  const int right = left + frame.width();
  const int bottom = top + frame.height();
  const QSize size(radius, radius);
  return {{{{{left, top}, size}, {left + radius, top + radius}, 90},
           {{{right - radius, top}, size}, {right - radius, top + radius}, 0},
           {{{left, bottom - radius}, size}, {left + radius, bottom - radius}, 180},
           {{{right - radius, bottom - radius}, size}, {right - radius, bottom - radius}, 270}}};
}

void paintCorner(QPainter& painter, const Corner& corner, int radius, const FrameColors& colors) {
  constexpr int quarter = 90;
  QPainterPath pie(corner.centre);
  const QPointF radiusOffset(radius, radius);
  pie.arcTo(QRectF(corner.centre - radiusOffset, corner.centre + radiusOffset), corner.startAngle, quarter);
  painter.fillPath(pie, colors.background);
  const QPointF line(radius - 0.5, radius - 0.5);
  constexpr int unitsPerDegree = 16;  // of QPainter::drawArc()
  painter.setPen(QPen(colors.border, 1, Qt::SolidLine, Qt::FlatCap));
  painter.drawArc(QRectF(corner.centre - line, corner.centre + line), corner.startAngle * unitsPerDegree,
                  quarter * unitsPerDegree);
}

}  // namespace

void paintRoundedFrame(QPainter& painter, const QRect& frame, int radius, const FrameColors& colors,
                       const QRect& damaged) {
  const QRect middle = frame.adjusted(radius, 0, -radius, 0);
  const QRect left(frame.x(), frame.y() + radius, radius, frame.height() - 2 * radius);
  const QRect right = left.translated(frame.width() - radius, 0);
  for (const QRect& part : {middle, left, right}) painter.fillRect(part & damaged, colors.background);
  const QRect top(middle.x(), frame.y(), middle.width(), 1);
  const QRect leftLine(left.x(), left.y(), 1, left.height());
  for (const QRect& line :
       {top, top.translated(0, frame.height() - 1), leftLine, leftLine.translated(frame.width() - 1, 0)}) {
    painter.fillRect(line & damaged, colors.border);
  }
  painter.setRenderHint(QPainter::Antialiasing);
  for (const Corner& corner : cornersOf(frame, radius)) {
    if (corner.square.intersects(damaged)) paintCorner(painter, corner, radius, colors);
  }
}

void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const Theme& theme) {
  constexpr double inset = focusRingWeight / 2;
  painter.setPen(QPen(theme.focusRing, focusRingWeight));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(frame.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
}

void drawFocusLine(QPainter& painter, const QRectF& frame, const Theme& theme) {
  painter.fillRect(frame.adjusted(0, frame.height() - focusRingWeight, 0, 0), theme.focusRing);
}

}  // namespace tarn
