// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// How a text lies in its label where the desktop reads from left to right, and where it does not.

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QStringList>
#include <string>
#include <vector>

#include "ui/painted_text.hpp"

namespace tarn {
namespace {

class TextDirection : public ::testing::TestWithParam<Qt::LayoutDirection> {
 protected:
  TextDirection() { QGuiApplication::setLayoutDirection(GetParam()); }
  ~TextDirection() override { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }
};

TEST_P(TextDirection, LeavesFullStopsAtTheEndOfEnglishSentences) {
  for (const Overflow overflow : {Overflow::cuts, Overflow::wraps}) {
    TextLabel label(systemFont(13), TextStyle::primary, overflow);
    const QImage image = paintedOnWhite(label, "Memory is short.", {280, 18});
    EXPECT_TRUE(endsInDot(image, false, Qt::white));
    EXPECT_FALSE(endsInDot(image, true, Qt::white));
  }
}

TEST_P(TextDirection, ReadsASentenceThatStartsWithAFigureFromItsFigureOn) {
  TextLabel label(systemFont(11), TextStyle::secondary, Overflow::wraps);
  const QString share = "١١٪\u061c";  // as Egypt writes it
  const QImage image = paintedOnWhite(label, share + " of 4 cores in use.", {280, 18});
  EXPECT_TRUE(endsInDot(image, false, Qt::white));
}

TEST_P(TextDirection, PutsTheSeparatorOfAProcessLineBesideTheName) {
  TextLabel label(systemFont(10), TextStyle::tertiary, Overflow::cuts);
  const QImage image = paintedOnWhite(label, "· PID 100", {100, 14});
  const bool nameIsAtLeft = GetParam() == Qt::LeftToRight;
  EXPECT_TRUE(endsInDot(image, nameIsAtLeft, Qt::white));
  EXPECT_FALSE(endsInDot(image, !nameIsAtLeft, Qt::white));
}

TEST_P(TextDirection, StartsATextAtItsLeadingEdge) {
  for (const Overflow overflow : {Overflow::cuts, Overflow::wraps}) {
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
  const auto pictures = [&] {
    std::vector<QImage> images;
    for (const QString& text : texts) {
      FigureLabel label(systemFont(12), TextStyle::secondary);
      label.setText(text);
      images.push_back(paintedOnWhite(label, text, {label.sizeHint().width(), 18}));
    }
    return images;
  };
  const auto here = pictures();
  QGuiApplication::setLayoutDirection(Qt::LeftToRight);
  EXPECT_EQ(here, pictures());
}

TEST_P(TextDirection, EndsAFigureAtItsTrailingEdge) {
  FigureLabel label(systemFont(12), TextStyle::secondary);
  const QImage image = paintedOnWhite(label, "12 MB", {200, 18});
  QImage blank(100, 18, image.format());
  blank.fill(Qt::white);
  EXPECT_EQ(image.copy(GetParam() == Qt::LeftToRight ? 0 : 100, 0, 100, 18), blank);
}

INSTANTIATE_TEST_SUITE_P(OfReading, TextDirection, ::testing::Values(Qt::LeftToRight, Qt::RightToLeft),
                         [](const auto& run) {
                           return run.param == Qt::RightToLeft ? std::string("RightToLeft")
                                                               : std::string("LeftToRight");
                         });

}  // namespace
}  // namespace tarn
