// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/text_label.hpp"

#include <gtest/gtest.h>

#include <QFontInfo>
#include <QImage>
#include <QWidget>

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
