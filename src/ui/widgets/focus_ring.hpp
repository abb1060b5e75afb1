// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPainter>
#include <QRectF>

#include "ui/widgets/theme.hpp"

namespace tarn {

constexpr double focusRingWeight = 2;

/// Shows where the keyboard is: a ring just inside `frame`.
inline void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const Theme& theme) {
  constexpr double inset = focusRingWeight / 2;
  painter.setPen(QPen(theme.focusRing, focusRingWeight));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(frame.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
}

/// The same for a text that leaves no room for a ring: a line along the bottom of `frame`, to be drawn before
/// the text.
inline void drawFocusLine(QPainter& painter, const QRectF& frame, const Theme& theme) {
  painter.fillRect(frame.adjusted(0, frame.height() - focusRingWeight, 0, 0), theme.focusRing);
}

}  // namespace tarn
