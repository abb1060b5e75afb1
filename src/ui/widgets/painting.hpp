// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QPainter>
#include <QRect>

namespace tarn {

/// Colours of a frame: what fills it, and a line of one point within its edge.
struct FrameColors {
  QColor background;
  QColor border;
};

/// Paints what is within `damaged` of a frame with round corners, as one rounded rectangle would look. Only
/// its corners are drawn as shapes: the toolkit needs memory for a shape by its size, and keeps it.
void paintRoundedFrame(QPainter& painter, const QRect& frame, int radius, const FrameColors& colors,
                       const QRect& damaged);

}  // namespace tarn
