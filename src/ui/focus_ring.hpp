// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPainter>
#include <QRectF>

#include "ui/theme.hpp"

namespace tarn {

/// Shows where the keyboard is: a ring just inside `frame`.
inline void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const Theme& theme) {
  constexpr double weight = 2;
  const double inset = weight / 2;
  painter.setPen(QPen(theme.accent, weight));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(frame.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
}

}  // namespace tarn
