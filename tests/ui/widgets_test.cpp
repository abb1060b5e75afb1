// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/theme.hpp"

#include <gtest/gtest.h>

#include <QLabel>
#include <QWidget>
#include <set>
#include <vector>

#include "ui/contrast.hpp"

namespace tarn {
namespace {

constexpr double readable = 4.5;    ///< for text
constexpr double noticeable = 3.0;  ///< for glyphs and for text that may recede

const std::vector<const Theme*>& themes() {
  static const std::vector<const Theme*> both{&Theme::light(), &Theme::dark()};
  return both;
}

/// The popover's ground, and a row's while it is highlighted.
std::vector<QColor> groundsOf(const Theme& theme) {
  return {theme.background, onBackground(theme.highlight, theme.background)};
}

TEST(Contrast, IsTheOneThatIsDefinedForBlackOnWhite) {
  EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 1e-9);
  EXPECT_NEAR(contrast(QColor(0x777777), Qt::white), 4.48, 0.01);
  EXPECT_EQ(onBackground(QColor(0, 0, 0, 128), Qt::white), QColor(127, 127, 127));
}

TEST(Theme, KeepsTextReadableOnTheGroundAndOnHighlightedRows) {
  for (const Theme* theme : themes()) {
    for (const QColor& ground : groundsOf(*theme)) {
      EXPECT_GE(contrast(theme->color(TextStyle::primary), ground), readable);
      EXPECT_GE(contrast(theme->color(TextStyle::secondary), ground), readable);
      EXPECT_GE(contrast(theme->color(TextStyle::tertiary), ground), noticeable);
    }
  }
}

TEST(Theme, StepsItsTextStylesDownInContrast) {
  for (const Theme* theme : themes()) {
    const auto of = [&](TextStyle style) { return contrast(theme->color(style), theme->background); };
    EXPECT_GT(of(TextStyle::primary), 1.3 * of(TextStyle::secondary));
    EXPECT_GT(of(TextStyle::secondary), 1.3 * of(TextStyle::tertiary));
  }
}

TEST(Theme, KeepsTintsNoticeableOnTheGround) {
  for (const Theme* theme : themes()) {
    for (const Tint tint : {Tint::green, Tint::orange, Tint::red, Tint::secondary}) {
      EXPECT_GE(contrast(theme->color(tint), theme->background), noticeable);
    }
  }
}

TEST(Theme, KeepsTheTextOfControlsReadable) {
  for (const Theme* theme : themes()) {
    for (const QColor& fill : {theme->control, theme->controlHover, theme->controlSelected}) {
      EXPECT_GE(contrast(theme->primary, onBackground(fill, theme->background)), readable);
    }
    EXPECT_GE(contrast(theme->accent, theme->background), noticeable) << "a ticked box";
    EXPECT_GE(contrast(Qt::white, theme->accent), noticeable) << "the tick";
  }
}

TEST(Theme, KeepsTheFocusRingNoticeableOnAllThatItSurrounds) {
  for (const Theme* theme : themes()) {
    EXPECT_GE(contrast(theme->focusRing, theme->background), noticeable);
    for (const QColor& fill :
         {theme->highlight, theme->control, theme->controlHover, theme->controlSelected}) {
      EXPECT_GE(contrast(theme->focusRing, onBackground(fill, theme->background)), noticeable);
    }
  }
}

TEST(Theme, HasADifferentColourForEveryTint) {
  for (const Theme* theme : themes()) {
    std::set<QRgb> colours;
    for (const Tint tint : {Tint::green, Tint::orange, Tint::red, Tint::secondary}) {
      colours.insert(theme->color(tint).rgb());
    }
    EXPECT_EQ(colours.size(), 4U);
    EXPECT_EQ(theme->color(Tint::secondary), theme->color(TextStyle::secondary));
  }
}

TEST(Theme, ReachesAWidgetThroughItsPalette) {
  for (const Theme* theme : themes()) {
    QWidget window;
    auto* child = new QLabel(&window);
    window.setPalette(theme->palette());
    EXPECT_EQ(&themeOf(*child), theme);
    for (const TextStyle style : {TextStyle::primary, TextStyle::secondary, TextStyle::tertiary}) {
      EXPECT_EQ(child->palette().color(paletteRole(style)), theme->color(style));
    }
    window.setEnabled(false);
    EXPECT_EQ(child->palette().color(paletteRole(TextStyle::secondary)), theme->color(TextStyle::secondary))
        << "a disabled row looks like the others";
  }
}

TEST(Theme, MeasuresFontsInPixels) {
  for (const int size : {9, 10, 11, 12, 13, 14}) {
    EXPECT_EQ(systemFont(size).pixelSize(), size);
    EXPECT_EQ(systemFont(size).weight(), QFont::Normal);
  }
  EXPECT_EQ(systemFont(12, QFont::Medium).weight(), QFont::Medium);
}

}  // namespace
}  // namespace tarn
