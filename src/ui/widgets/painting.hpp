// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Shapes that several widgets paint: rounded frames and the marks of the keyboard focus.

#pragma once

#include <QColor>
#include <QPainter>
#include <QRect>
#include <QRectF>

#include "ui/widgets/theme.hpp"

namespace tarn {

/// Colours of a rounded frame: its fill, and a line of one point just inside its edge.
struct FrameColors {
  QColor background;
  QColor border;
};

/// Paints the part of a frame with round corners that lies within `damaged`. It looks like one
/// drawRoundedRect() call, but only the corners are drawn as paths: Qt's rasteriser allocates memory in
/// proportion to the size of a path, and does not free it.
void paintRoundedFrame(QPainter& painter, const QRect& frame, int radius, const FrameColors& colors,
                       const QRect& damaged);

/// Draws the focus ring just inside `frame`.
void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const Theme& theme);

/// Draws a focus line along the bottom of `frame`, for text without space for a ring. Call it before the text
/// is drawn.
void drawFocusLine(QPainter& painter, const QRectF& frame, const Theme& theme);

}  // namespace tarn
