// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/painting.hpp"

#include <gtest/gtest.h>

#include <QImage>
#include <cstdlib>

namespace tarn {
namespace {

constexpr int radius = 12;
const QRect frame(10, 10, 100, 80);
const FrameColors colors{QColor(0xfa, 0xfa, 0xfb), QColor(0, 0, 0, 23)};

QImage canvas() {
  QImage image(120, 100, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

QImage asOneShape() {
  QImage image = canvas();
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colors.background);
  painter.drawRoundedRect(QRectF(frame), radius, radius);
  painter.setPen(QPen(colors.border, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(frame).adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
  return image;
}

int largestDifference(const QImage& one, const QImage& other) {
  int largest = 0;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x) {
      const QColor left = one.pixelColor(x, y);
      const QColor right = other.pixelColor(x, y);
      // A colour says nothing where there is hardly any of it.
      if (left.alpha() > 20) largest = std::max(largest, std::abs(left.red() - right.red()));
      largest = std::max(largest, std::abs(left.alpha() - right.alpha()));
    }
  }
  return largest;
}

TEST(RoundedFrame, LooksLikeOneRoundedRectangle) {
  QImage image = canvas();
  QPainter painter(&image);
  paintRoundedFrame(painter, frame, radius, colors, image.rect());
  painter.end();
  EXPECT_LE(largestDifference(image, asOneShape()), 12);
  EXPECT_GE(largestDifference(canvas(), asOneShape()), 200) << "or nothing was compared";
}

TEST(RoundedFrame, PaintsNothingOutsideOfWhatIsDamaged) {
  QImage image = canvas();
  QPainter painter(&image);
  paintRoundedFrame(painter, frame, radius, colors, QRect(30, 30, 20, 20));
  painter.end();
  EXPECT_EQ(image.pixelColor(35, 35), colors.background);
  EXPECT_EQ(image.pixelColor(60, 35).alpha(), 0);
  EXPECT_EQ(image.pixelColor(12, 12).alpha(), 0);
}

}  // namespace
}  // namespace tarn
