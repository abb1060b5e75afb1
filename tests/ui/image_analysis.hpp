// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Measures images: contrasts, colours, and where a text ends.

#pragma once

#include <QColor>
#include <QImage>
#include <QPalette>
#include <QRect>
#include <QSize>
#include <QString>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "ui/widgets/text_label.hpp"

namespace tarn {

/// The colour of a pixel when `color`, which may be translucent, is painted on the opaque `background`.
inline QColor onBackground(const QColor& color, const QColor& background) {
  const auto alpha = static_cast<double>(color.alphaF());
  const auto mixed = [alpha](int painted, int below) {
    return static_cast<int>(std::lround(painted * alpha + below * (1 - alpha)));
  };
  return {mixed(color.red(), background.red()), mixed(color.green(), background.green()),
          mixed(color.blue(), background.blue())};
}

/// Relative luminance of an opaque colour as WCAG 2 defines it, 0 to 1.
inline double luminance(const QColor& color) {
  const auto linear = [](int channel) {
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.red()) + 0.7152 * linear(color.green()) + 0.0722 * linear(color.blue());
}

/// Contrast ratio of two opaque colours as WCAG 2 defines it, 1 to 21.
inline double contrast(const QColor& first, const QColor& second) {
  const double lighter = std::max(luminance(first), luminance(second));
  const double darker = std::min(luminance(first), luminance(second));
  return (lighter + 0.05) / (darker + 0.05);
}

/// A colour and the share of an image that it covers, 0 to 1.
struct PaintedColor {
  QColor color;
  double share = 0;
};

/// The colours of an image, the most common one first.
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
                   [](const auto& first, const auto& second) { return first.share > second.share; });
  return colors;
}

/// A part of `view`, rendered at four pixels per point, so that thin strokes have pixels that are
/// not antialiased.
inline QImage enlarged(QWidget& view, const QRect& part) {
  constexpr int enlargement = 4;
  QImage image(part.size() * enlargement, QImage::Format_RGB32);
  image.setDevicePixelRatio(enlargement);
  image.fill(Qt::magenta);
  view.render(&image, QPoint(), part);
  return image;
}

/// Contrast of a text or a glyph with its background: the contrast of the two most common colours. 1 for an
/// image of a single colour.
inline double foregroundContrast(const QImage& image) {
  const auto colors = colorsOf(image);
  return colors.size() < 2 ? 1 : contrast(colors[0].color, colors[1].color);
}

/// The lowest contrast of `color` with the other common colours of an image. 0 if the image lacks `color`.
inline double contrastWithNeighbors(const QImage& image, const QColor& color) {
  constexpr double minimumShare = 0.04;  // smaller shares are antialiased edges
  double lowest = 21;
  bool isPainted = false;
  for (const auto& [other, share] : colorsOf(image)) {
    if (share < minimumShare) break;
    if (other == color) {
      isPainted = true;
    } else {
      lowest = std::min(lowest, contrast(other, color));
    }
  }
  return isPainted ? lowest : 0;
}

/// Whether the leftmost or rightmost character of a text is a dot: its outermost pixels are at most 3 high.
inline bool endsInDot(const QImage& image, bool atLeft, const QColor& background) {
  QRect text;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, y) != background) text |= QRect(x, y, 1, 1);
    }
  }
  constexpr int columns = 2;
  const int start = atLeft ? text.left() : text.right() + 1 - columns;
  int height = 0;
  for (int y = text.top(); y <= text.bottom(); ++y) {
    const bool isDrawn =
        image.pixelColor(start, y) != background || image.pixelColor(start + 1, y) != background;
    height += isDrawn ? 1 : 0;
  }
  return height > 0 && height <= 3;
}

/// Renders the label with this text and size on a white background.
inline QImage paintedOnWhite(TextLabel& label, const QString& text, const QSize& size) {
  QPalette palette = label.palette();
  palette.setColor(QPalette::Window, Qt::white);
  label.setPalette(palette);
  label.setText(text);
  label.resize(size);
  return label.grab().toImage();
}

}  // namespace tarn
