// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <QWidget>
#include <algorithm>
#include <map>
#include <vector>

#include "ui/contrast.hpp"

namespace tarn {

/// A colour and how much of a picture it covers, 0 to 1.
struct PaintedColor {
  QColor color;
  double share = 0;
};

/// The colours of a picture, the most common one first.
inline std::vector<PaintedColor> colorsOf(const QImage& image) {
  std::map<QRgb, int> counts;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) ++counts[image.pixel(x, y)];
  }
  const double pixels = static_cast<double>(image.width()) * image.height();
  std::vector<PaintedColor> colors;
  colors.reserve(counts.size());
  for (const auto& [rgb, count] : counts) colors.push_back({QColor(rgb), count / pixels});
  std::stable_sort(colors.begin(), colors.end(),
                   [](const auto& one, const auto& other) { return one.share > other.share; });
  return colors;
}

/// What a part of `view` looks like, larger than it is: thin strokes show their full colour then.
inline QImage enlarged(QWidget& view, const QRect& part) {
  constexpr int enlargement = 4;
  QImage image(part.size() * enlargement, QImage::Format_RGB32);
  image.setDevicePixelRatio(enlargement);
  image.fill(Qt::magenta);
  view.render(&image, QPoint(), part);
  return image;
}

/// Contrast of a text or a glyph with what it is painted on, which together fill the picture: its two most
/// common colours. 1 for a picture of a single colour.
inline double inkContrast(const QImage& image) {
  const auto colors = colorsOf(image);
  return colors.size() < 2 ? 1 : contrast(colors[0].color, colors[1].color);
}

/// The lowest contrast of `ink` with the other areas of one colour in a picture; 0 where it is not painted.
inline double contrastWithNeighbors(const QImage& image, const QColor& ink) {
  constexpr double leastShare = 0.04;  // less is the soft edge between two areas
  double lowest = 21;
  bool isPainted = false;
  for (const auto& [color, share] : colorsOf(image)) {
    if (share < leastShare) break;
    if (color == ink) {
      isPainted = true;
    } else {
      lowest = std::min(lowest, contrast(color, ink));
    }
  }
  return isPainted ? lowest : 0;
}

}  // namespace tarn
