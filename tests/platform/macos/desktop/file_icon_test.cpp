// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/desktop/file_icon.hpp"

#include <gtest/gtest.h>

#include <QImage>

namespace tarn::macos {
namespace {

/// A square of one colour, half transparent.
Pixels square(int side) {
  Pixels pixels{.width = side, .height = side};
  for (int i = 0; i < side * side; ++i) pixels.rgba.insert(pixels.rgba.end(), {128, 64, 0, 128});
  return pixels;
}

TEST(FileIcon, HasAPictureForEachScale) {
  const QIcon icon = iconOf({square(32), square(64)});
  EXPECT_EQ(icon.pixmap(QSize(32, 32), 1).size(), QSize(32, 32));
  const QPixmap twice = icon.pixmap(QSize(32, 32), 2);
  EXPECT_EQ(twice.size(), QSize(64, 64));
  const QColor color = twice.toImage().pixelColor(5, 5);
  EXPECT_NEAR(color.red(), 255, 1);
  EXPECT_NEAR(color.green(), 127, 1);
  EXPECT_EQ(color.blue(), 0);
  EXPECT_EQ(color.alpha(), 128);
}

TEST(FileIcon, PassesOverPicturesThatCouldNotBeDrawn) {
  Pixels cut = square(64);
  cut.rgba.resize(10);
  EXPECT_TRUE(iconOf({Pixels{}, cut}).isNull());
  EXPECT_FALSE(iconOf({square(32), cut}).isNull());
}

}  // namespace
}  // namespace tarn::macos
