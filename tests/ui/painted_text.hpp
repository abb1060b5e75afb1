// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QImage>
#include <QPalette>
#include <QRect>
#include <QSize>
#include <QString>

#include "ui/widgets/text_label.hpp"

namespace tarn {

/// Whether the outermost points of what is written in a picture belong to a dot, not to a letter or a digit.
inline bool endsInDot(const QImage& image, bool atLeft, const QColor& ground) {
  QRect ink;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, y) != ground) ink |= QRect(x, y, 1, 1);
    }
  }
  constexpr int reach = 2;
  const int start = atLeft ? ink.left() : ink.right() + 1 - reach;
  int height = 0;
  for (int y = ink.top(); y <= ink.bottom(); ++y) {
    const bool isInked = image.pixelColor(start, y) != ground || image.pixelColor(start + 1, y) != ground;
    height += isInked ? 1 : 0;
  }
  return height > 0 && height <= 3;
}

/// What the label looks like on white, in that size.
inline QImage paintedOnWhite(TextLabel& label, const QString& text, const QSize& size) {
  QPalette palette = label.palette();
  palette.setColor(QPalette::Window, Qt::white);
  label.setPalette(palette);
  label.setText(text);
  label.resize(size);
  return label.grab().toImage();
}

}  // namespace tarn
