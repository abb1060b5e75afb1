// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/text_label.hpp"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QFontInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QStringList>
#include <QWidget>
#include <algorithm>
#include <cstdint>
#include <ios>
#include <string>
#include <vector>

#include "ui/image_analysis.hpp"
#include "ui/popover/popover_footer.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {
namespace {

/// A font whose digit one is narrower than its digit nine.
QFont proportionalFont() {
  QFont font("Inter");
  font.setPixelSize(12);
  EXPECT_EQ(QFontInfo(font).family(), "Inter") << "this test needs the font Inter";
  const QFontMetrics metrics(font);
  EXPECT_LT(metrics.horizontalAdvance('1'), metrics.horizontalAdvance('9'));
  return font;
}

/// Renders the label. `width` 0: in its preferred width.
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

TEST(FigureLabel, KeepsCharactersInPlaceWhenDigitsChange) {
  FigureLabel label(proportionalFont(), TextStyle::primary);
  const QImage narrow = painted(label, "111.1 MB");
  const QImage wide = painted(label, "999.9 MB");
  const int unit = QFontMetrics(label.font()).horizontalAdvance("MB") + 2;
  EXPECT_EQ(rightPart(narrow, unit), rightPart(wide, unit));
  EXPECT_NE(narrow, wide);
  const QImage mixed = painted(label, "919.1 MB");
  const int cell = QFontMetrics(label.font()).horizontalAdvance('9');
  EXPECT_EQ(mixed.copy(0, 0, cell, 18), wide.copy(0, 0, cell, 18));
}

TEST(FigureLabel, EndsAtItsRightEdge) {
  FigureLabel label(proportionalFont(), TextStyle::primary);
  const QImage fitted = painted(label, "12.5 MB");
  const QImage widened = painted(label, "12.5 MB", fitted.width() + 40);
  EXPECT_EQ(rightPart(widened, fitted.width()), fitted);
}

TEST(FigureLabel, GivesAllDigitsOfAScriptTheSameWidth) {
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

TEST(FigureLabel, DrawsADigitOfTwoCodeUnits) {
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

TEST(FigureLabel, GivesDirectionMarksNoWidth) {
  FigureLabel label(proportionalFont(), TextStyle::primary);
  const QString percentage = QStringLiteral("\u0661\u0662\u066a");  // 12 % in the locale ar_EG
  const QImage plain = painted(label, percentage);
  EXPECT_EQ(painted(label, percentage + QChar(0x061c)), plain);
}

TEST(TextLabel, ElidesALongTextAtItsEnd) {
  TextLabel label(systemFont(12), TextStyle::primary, Overflow::elide);
  constexpr int width = 100;
  const QString text = "The beginning of a name whose end is not shown";
  const QString elided = QFontMetrics(label.font()).elidedText(text, Qt::ElideRight, width);
  ASSERT_TRUE(elided.startsWith("The begin"));
  ASSERT_TRUE(elided.endsWith(QChar(0x2026)));
  EXPECT_EQ(painted(label, text, width), painted(label, elided, width));
}

TEST(TextLabel, ShowsAFittingTextCompletely) {
  for (const int size : {10, 11, 12, 13}) {
    for (const QString& text :
         {QString("Made with love by "), QString("Wi"), QString("2 background processes")}) {
      TextLabel label(systemFont(size), TextStyle::primary, Overflow::elide);
      const QImage fitted = painted(label, text);
      const QImage widened = painted(label, text, fitted.width() + 50);
      EXPECT_EQ(widened.copy(0, 0, fitted.width(), 18), fitted) << text.toStdString() << " at " << size;
    }
  }
}

TEST(TextLabel, IgnoresTheMouse) {
  EXPECT_TRUE(TextLabel(systemFont(12), TextStyle::primary, Overflow::elide)
                  .testAttribute(Qt::WA_TransparentForMouseEvents));
}

class TextDirection : public ::testing::TestWithParam<Qt::LayoutDirection> {
 protected:
  TextDirection() { QGuiApplication::setLayoutDirection(GetParam()); }
  ~TextDirection() override { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }
};

TEST_P(TextDirection, LeavesFullStopsAtTheEndOfEnglishSentences) {
  for (const Overflow overflow : {Overflow::elide, Overflow::wrap}) {
    TextLabel label(systemFont(13), TextStyle::primary, overflow);
    const QImage image = paintedOnWhite(label, "Memory is short.", {280, 18});
    EXPECT_TRUE(endsInDot(image, false, Qt::white));
    EXPECT_FALSE(endsInDot(image, true, Qt::white));
  }
}

TEST_P(TextDirection, WritesAnEnglishSentenceAfterAnArabicFigureFromLeftToRight) {
  TextLabel label(systemFont(11), TextStyle::secondary, Overflow::wrap);
  const QString percentage = "١١٪\u061c";  // 11 % in the locale ar_EG
  const QImage image = paintedOnWhite(label, percentage + " of 4 cores in use.", {280, 18});
  EXPECT_TRUE(endsInDot(image, false, Qt::white));
}

TEST_P(TextDirection, PutsTheSeparatorOfAProcessLineNextToTheName) {
  TextLabel label(systemFont(10), TextStyle::tertiary, Overflow::elide);
  const QImage image = paintedOnWhite(label, "· PID 100", {100, 14});
  const bool nameIsAtLeft = GetParam() == Qt::LeftToRight;
  EXPECT_TRUE(endsInDot(image, nameIsAtLeft, Qt::white));
  EXPECT_FALSE(endsInDot(image, !nameIsAtLeft, Qt::white));
}

TEST_P(TextDirection, StartsATextAtItsLeadingEdge) {
  for (const Overflow overflow : {Overflow::elide, Overflow::wrap}) {
    TextLabel label(systemFont(13), TextStyle::primary, overflow);
    const QImage image = paintedOnWhite(label, "Short", {280, 18});
    const QImage trailingHalf = image.copy(GetParam() == Qt::LeftToRight ? 140 : 0, 0, 140, 18);
    QImage blank(trailingHalf.size(), image.format());
    blank.fill(Qt::white);
    EXPECT_EQ(trailingHalf, blank);
    EXPECT_NE(image.copy(GetParam() == Qt::LeftToRight ? 0 : 140, 0, 140, 18), blank);
  }
}

TEST_P(TextDirection, WritesFiguresFromLeftToRight) {
  const QStringList texts{"1.234,5 MB", "١٢٣٫٤ MB", "١٢٪", "2 days, 5 hours"};
  const auto images = [&] {
    std::vector<QImage> painted;
    for (const QString& text : texts) {
      FigureLabel label(systemFont(12), TextStyle::secondary);
      label.setText(text);
      painted.push_back(paintedOnWhite(label, text, {label.sizeHint().width(), 18}));
    }
    return painted;
  };
  const auto inThisDirection = images();
  QGuiApplication::setLayoutDirection(Qt::LeftToRight);
  EXPECT_EQ(inThisDirection, images());
}

TEST_P(TextDirection, EndsAFigureAtItsTrailingEdge) {
  FigureLabel label(systemFont(12), TextStyle::secondary);
  const QImage image = paintedOnWhite(label, "12 MB", {200, 18});
  QImage blank(100, 18, image.format());
  blank.fill(Qt::white);
  EXPECT_EQ(image.copy(GetParam() == Qt::LeftToRight ? 0 : 100, 0, 100, 18), blank);
}

INSTANTIATE_TEST_SUITE_P(LayoutDirections, TextDirection, ::testing::Values(Qt::LeftToRight, Qt::RightToLeft),
                         [](const auto& test) {
                           return test.param == Qt::RightToLeft ? std::string("RightToLeft")
                                                                : std::string("LeftToRight");
                         });

QImage painted(CreditLabel& label) {
  label.setPalette(Theme::light().palette());
  label.resize(label.sizeHint());
  return label.grab().toImage();
}

/// Counts red pixels. No text style is red.
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

TEST(CreditLabel, ShowsEmojiInColour) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setText(QStringLiteral("Made with \u2764\ufe0f by "));
  EXPECT_GT(redPixels(painted(label)), 8) << "this test needs a colour emoji font";
}

TEST(CreditLabel, ShowsTextWithoutEmojiInItsTextStyle) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setText(QStringLiteral("Made by "));
  EXPECT_EQ(redPixels(painted(label)), 0);
}

TEST(CreditLabel, IsAsWideAsItsTextAndEmojiTogether) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setText(QStringLiteral("Made with  by "));
  const int text = label.sizeHint().width();
  label.setText(QStringLiteral("Made with \u2764\ufe0f by "));
  EXPECT_GT(label.sizeHint().width(), text + 5);
  EXPECT_LT(label.sizeHint().width(), text + 25);
}

TEST(CreditLabel, LooksTheSameOnARightToLeftDesktop) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setLayoutDirection(Qt::LeftToRight);
  label.setText(QStringLiteral("Made with \u2764\ufe0f by "));
  const QImage image = painted(label);
  QGuiApplication::setLayoutDirection(Qt::RightToLeft);
  EXPECT_EQ(painted(label), image);
  QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST(CreditLabel, HasItsWholeTextAsAccessibleName) {
  CreditLabel label(systemFont(10), TextStyle::tertiary);
  label.setText(QStringLiteral("Made with \u2764\ufe0f by "));
  const QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&label);
  EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Made with \u2764\ufe0f by "));
}

}  // namespace
}  // namespace tarn
