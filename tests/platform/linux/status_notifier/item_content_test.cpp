// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/item_content.hpp"

#include <gtest/gtest.h>

#include "platform/linux/status_notifier/test_label.hpp"

namespace tarn {
namespace {

TEST(CirclePicture, IsTheCircleInItsColourOnATransparentSquare) {
  const QImage picture = circlePicture(test::ordinaryLabel(), 22);
  EXPECT_EQ(picture.size(), QSize(22, 22));
  EXPECT_EQ(picture.pixelColor(11, 11), QColor(0x24, 0x9a, 0x63));
  EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
  EXPECT_EQ(picture.pixelColor(21, 21).alpha(), 0);
}

TEST(CirclePicture, IsTransparentForAnUnknownSymbol) {
  MenuBarLabel label = test::ordinaryLabel();
  label.symbolName = QStringLiteral("nothing.known");
  QImage empty(22, 22, QImage::Format_ARGB32_Premultiplied);
  empty.fill(Qt::transparent);
  EXPECT_EQ(circlePicture(label, 22), empty);
}

TEST(LabelledPicture, HasTheTextThreePointsBesideTheCircle) {
  const QImage picture = labelledPicture(test::labelWithText(QStringLiteral("3.12 GB")), 22);
  EXPECT_EQ(picture.height(), 22);
  EXPECT_GT(picture.width(), 22 + 3 + 20);
  EXPECT_EQ(picture.pixelColor(11, 11), QColor(0x24, 0x9a, 0x63));
  int firstInked = -1;
  for (int x = 22; x < picture.width() && firstInked < 0; ++x) {
    for (int y = 0; y < 22; ++y) {
      if (picture.pixelColor(x, y).alpha() > 60) firstInked = x;
    }
  }
  EXPECT_GE(firstInked, 22 + 3);
  EXPECT_LE(firstInked, 22 + 3 + 2);
}

TEST(LabelledPicture, IsTheCircleAloneWithoutText) {
  EXPECT_EQ(labelledPicture(test::ordinaryLabel(), 22), circlePicture(test::ordinaryLabel(), 22));
  EXPECT_EQ(labelledPicture(test::labelWithText(QString()), 22), circlePicture(test::ordinaryLabel(), 22));
}

}  // namespace
}  // namespace tarn
