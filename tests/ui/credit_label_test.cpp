// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/credit_label.hpp"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QImage>

#include "ui/widgets/theme.hpp"

namespace tarn {
namespace {

QImage painted(CreditLabel& label) {
  label.setPalette(Theme::light().palette());
  label.resize(label.sizeHint());
  return label.grab().toImage();
}

/// Pixels that are clearly red, which no text style is.
int redPixels(const QImage& image) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor pixel = image.pixelColor(x, y);
      if (pixel.red() > pixel.green() + 100 && pixel.red() > pixel.blue() + 100) ++count;
    }
  }
  return count;
}

TEST(CreditLabel, ShowsAnEmojiInItsOwnColours) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setText(QStringLiteral("Made with \u2764\ufe0f by "));
  EXPECT_GT(redPixels(painted(label)), 8) << "needs a colour emoji font";
}

TEST(CreditLabel, ShowsTextWithoutEmojiInItsStyleAlone) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setText(QStringLiteral("Made with care by "));
  EXPECT_EQ(redPixels(painted(label)), 0);
}

TEST(CreditLabel, IsAsWideAsItsTextAndItsEmojiTogether) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setText(QStringLiteral("Made with  by "));
  const int text = label.sizeHint().width();
  label.setText(QStringLiteral("Made with \u2764\ufe0f by "));
  EXPECT_GT(label.sizeHint().width(), text + 5);
  EXPECT_LT(label.sizeHint().width(), text + 25);
}

TEST(CreditLabel, LooksTheSameWhereTheDesktopReadsFromRightToLeft) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setLayoutDirection(Qt::LeftToRight);
  label.setText(QStringLiteral("Made with \u2764\ufe0f by "));
  const QImage image = painted(label);
  QGuiApplication::setLayoutDirection(Qt::RightToLeft);
  EXPECT_EQ(painted(label), image);
  QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST(CreditLabel, IsReadOutAsOneText) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setText(QStringLiteral("Made with \u2764\ufe0f by "));
  const QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&label);
  EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Made with \u2764\ufe0f by "));
}

}  // namespace
}  // namespace tarn
