// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "platform/linux/status_notifier/status_notifier_item.hpp"
#include "platform/linux/status_notifier/test_label.hpp"

namespace tarn {
namespace {

TEST(CircleIcon, DrawsTheTintedCircleOnATransparentSquare) {
  const QImage icon = circleIcon(test::ordinaryLabel(), 22);
  EXPECT_EQ(icon.size(), QSize(22, 22));
  EXPECT_EQ(icon.pixelColor(11, 11), QColor(0x24, 0x9a, 0x63));
  EXPECT_EQ(icon.pixelColor(0, 0).alpha(), 0);
  EXPECT_EQ(icon.pixelColor(21, 21).alpha(), 0);
}

TEST(CircleIcon, IsTransparentForAnUnknownSymbol) {
  MenuBarLabel label = test::ordinaryLabel();
  label.symbolName = QStringLiteral("nothing.known");
  QImage empty(22, 22, QImage::Format_ARGB32_Premultiplied);
  empty.fill(Qt::transparent);
  EXPECT_EQ(circleIcon(label, 22), empty);
}

TEST(LabelledIcon, DrawsTheTextThreePointsBesideTheCircle) {
  const QImage icon = labelledIcon(test::labelWithText(QStringLiteral("3.12 GB")), 22);
  EXPECT_EQ(icon.height(), 22);
  EXPECT_GT(icon.width(), 22 + 3 + 20);
  EXPECT_EQ(icon.pixelColor(11, 11), QColor(0x24, 0x9a, 0x63));
  int firstTextColumn = -1;
  for (int x = 22; x < icon.width() && firstTextColumn < 0; ++x) {
    for (int y = 0; y < 22; ++y) {
      if (icon.pixelColor(x, y).alpha() > 60) firstTextColumn = x;
    }
  }
  EXPECT_GE(firstTextColumn, 22 + 3);
  EXPECT_LE(firstTextColumn, 22 + 3 + 2);
}

TEST(LabelledIcon, IsTheCircleOnlyWithoutText) {
  EXPECT_EQ(labelledIcon(test::ordinaryLabel(), 22), circleIcon(test::ordinaryLabel(), 22));
  EXPECT_EQ(labelledIcon(test::labelWithText(QString()), 22), circleIcon(test::ordinaryLabel(), 22));
}

}  // namespace
}  // namespace tarn
