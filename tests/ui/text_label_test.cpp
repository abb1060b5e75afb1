// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/text_label.hpp"

#include <gtest/gtest.h>

#include <QFontInfo>
#include <QImage>
#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <cstdint>
#include <ios>

namespace tarn {
namespace {

/// A font whose one is narrower than its nine, so that figures would jump.
QFont proportionalFont() {
  QFont font("Inter");
  font.setPixelSize(12);
  EXPECT_EQ(QFontInfo(font).family(), "Inter") << "the test needs this font";
  const QFontMetrics metrics(font);
  EXPECT_LT(metrics.horizontalAdvance('1'), metrics.horizontalAdvance('9'));
  return font;
}

/// What the label paints in its own size, or in the width given.
QImage painted(TextLabel& label, const QString& text, int width = 0) {
  label.setText(text);
  label.resize(width == 0 ? label.sizeHint().width() : width, 18);
  QImage image(label.size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  label.render(&image);
  return image;
}

QImage rightPart(const QImage& image, int width) {
  return image.copy(image.width() - width, 0, width, image.height());
}

TEST(FigureLabel, IsAsWideForNarrowDigitsAsForWideOnes) {
  FigureLabel label(proportionalFont(), TextStyle::primary);
  label.setText("111.1 MB");
  const QSize narrow = label.sizeHint();
  label.setText("999.9 MB");
  EXPECT_EQ(label.sizeHint(), narrow);
  EXPECT_EQ(label.minimumSizeHint(), narrow);
}

TEST(FigureLabel, KeepsEveryCharacterInPlaceWhenDigitsChange) {
  FigureLabel label(proportionalFont(), TextStyle::primary);
  const QImage narrow = painted(label, "111.1 MB");
  const QImage wide = painted(label, "999.9 MB");
  const int unit = QFontMetrics(label.font()).horizontalAdvance("MB") + 2;
  EXPECT_EQ(rightPart(narrow, unit), rightPart(wide, unit));
  EXPECT_NE(narrow, wide);
  const QImage middle = painted(label, "919.1 MB");
  const int cell = QFontMetrics(label.font()).horizontalAdvance('9');
  EXPECT_EQ(middle.copy(0, 0, cell, 18), wide.copy(0, 0, cell, 18));
}

TEST(FigureLabel, EndsAtItsRightEdge) {
  FigureLabel label(proportionalFont(), TextStyle::primary);
  const QImage tight = painted(label, "12.5 MB");
  const QImage loose = painted(label, "12.5 MB", tight.width() + 40);
  EXPECT_EQ(rightPart(loose, tight.width()), tight);
}

TEST(FigureLabel, GivesTheDigitsOfEveryScriptOneWidthEach) {
  FigureLabel label(proportionalFont(), TextStyle::primary);
  const QFontMetrics metrics(label.font());
  for (const char32_t zero : {U'0', U'\u0660', U'\u0966', U'\U0001e950'}) {
    int widest = 0;
    for (char32_t digit = zero; digit < zero + 10; ++digit) {
      widest = std::max(widest, metrics.horizontalAdvance(QString::fromUcs4(&digit, 1)));
    }
    ASSERT_GT(widest, 0);
    for (char32_t digit = zero; digit < zero + 10; ++digit) {
      label.setText(QString::fromUcs4(&digit, 1).repeated(3));
      EXPECT_EQ(label.sizeHint().width(), 3 * widest) << std::hex << static_cast<std::uint32_t>(digit);
    }
  }
}

TEST(FigureLabel, DrawsADigitOfTwoCodeUnitsWhole) {
  FigureLabel label(proportionalFont(), TextStyle::primary);
  const char32_t three = U'\U0001e953';  // in Adlam
  const QString digit = QString::fromUcs4(&three, 1);
  label.setAttribute(Qt::WA_OpaquePaintEvent);
  const QImage image = painted(label, digit, 40);
  QImage expected(image.size(), image.format());
  expected.fill(Qt::white);
  QPainter painter(&expected);
  painter.setFont(label.font());
  painter.setPen(label.palette().color(label.foregroundRole()));
  const QFontMetrics metrics(label.font());
  const int start =
      40 - label.sizeHint().width() + (label.sizeHint().width() - metrics.horizontalAdvance(digit)) / 2;
  painter.drawText(QRect(start, 0, 40, image.height()), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip,
                   digit);
  EXPECT_EQ(image, expected);
}

TEST(FigureLabel, LeavesNoRoomForMarksThatOnlyTellADirection) {
  FigureLabel label(proportionalFont(), TextStyle::primary);
  const QString share = QStringLiteral("\u0661\u0662\u066a");  // 12 % as Egypt writes it
  const QImage plain = painted(label, share);
  EXPECT_EQ(painted(label, share + QChar(0x061c)), plain);
}

TEST(TextLabel, CutsATextThatIsTooLongAtItsEnd) {
  TextLabel label(systemFont(12), TextStyle::primary, Overflow::cuts);
  constexpr int width = 100;
  const QString text = "The beginning of a name whose end is not shown";
  const QString cut = QFontMetrics(label.font()).elidedText(text, Qt::ElideRight, width);
  ASSERT_TRUE(cut.startsWith("The begin"));
  ASSERT_TRUE(cut.endsWith(QChar(0x2026)));
  EXPECT_EQ(painted(label, text, width), painted(label, cut, width));
}

TEST(TextLabel, ShowsATextThatFitsWhole) {
  for (const int size : {10, 11, 12, 13}) {
    for (const QString& text :
         {QString("Made with love by "), QString("Wi"), QString("2 background processes")}) {
      TextLabel label(systemFont(size), TextStyle::primary, Overflow::cuts);
      const QImage tight = painted(label, text);
      const QImage roomy = painted(label, text, tight.width() + 50);
      EXPECT_EQ(roomy.copy(0, 0, tight.width(), 18), tight) << text.toStdString() << " at " << size;
    }
  }
}

TEST(TextLabel, IgnoresTheMouseSoThatWhatIsUnderItGetsTheClick) {
  EXPECT_TRUE(TextLabel(systemFont(12), TextStyle::primary, Overflow::cuts)
                  .testAttribute(Qt::WA_TransparentForMouseEvents));
}

}  // namespace
}  // namespace tarn
