// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <algorithm>
#include <cmath>

namespace tarn {

/// `color` as it looks on the opaque `background`.
inline QColor onBackground(const QColor& color, const QColor& background) {
  const auto alpha = static_cast<double>(color.alphaF());
  const auto mixed = [alpha](int over, int under) {
    return static_cast<int>(std::lround(over * alpha + under * (1 - alpha)));
  };
  return {mixed(color.red(), background.red()), mixed(color.green(), background.green()),
          mixed(color.blue(), background.blue())};
}

/// Relative luminance of an opaque colour, 0 to 1.
inline double luminance(const QColor& color) {
  const auto linear = [](int channel) {
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.red()) + 0.7152 * linear(color.green()) + 0.0722 * linear(color.blue());
}

/// Contrast ratio of two opaque colours, 1 to 21.
inline double contrast(const QColor& one, const QColor& other) {
  const double lighter = std::max(luminance(one), luminance(other));
  const double darker = std::min(luminance(one), luminance(other));
  return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace tarn
