// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The theme, painted frames and the render scheduler.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QImage>
#include <QLabel>
#include <QWidget>
#include <cstdlib>
#include <memory>
#include <set>
#include <vector>

#include "ui/image_analysis.hpp"
#include "ui/widgets/painting.hpp"
#include "ui/widgets/render_scheduler.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {
namespace {

constexpr double textContrast = 4.5;     ///< WCAG 2 level AA for text
constexpr double minimumContrast = 3.0;  ///< for glyphs and tertiary text

const std::vector<const Theme*>& themes() {
  static const std::vector<const Theme*> both{&Theme::light(), &Theme::dark()};
  return both;
}

/// The backgrounds of the popover and of a highlighted row.
std::vector<QColor> backgroundsOf(const Theme& theme) {
  return {theme.background, onBackground(theme.highlight, theme.background)};
}

TEST(Contrast, MatchesTheWCAGDefinition) {
  EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 1e-9);
  EXPECT_NEAR(contrast(QColor(0x777777), Qt::white), 4.48, 0.01);
  EXPECT_EQ(onBackground(QColor(0, 0, 0, 128), Qt::white), QColor(127, 127, 127));
}

TEST(Theme, KeepsTextReadableOnBackgroundAndHighlight) {
  for (const Theme* theme : themes()) {
    for (const QColor& background : backgroundsOf(*theme)) {
      EXPECT_GE(contrast(theme->color(TextStyle::primary), background), textContrast);
      EXPECT_GE(contrast(theme->color(TextStyle::secondary), background), textContrast);
      EXPECT_GE(contrast(theme->color(TextStyle::tertiary), background), minimumContrast);
    }
  }
}

TEST(Theme, GivesItsTextStylesDecreasingContrast) {
  for (const Theme* theme : themes()) {
    const auto contrastOf = [&](TextStyle style) { return contrast(theme->color(style), theme->background); };
    EXPECT_GT(contrastOf(TextStyle::primary), 1.3 * contrastOf(TextStyle::secondary));
    EXPECT_GT(contrastOf(TextStyle::secondary), 1.3 * contrastOf(TextStyle::tertiary));
  }
}

TEST(Theme, KeepsTintsVisibleOnTheBackground) {
  for (const Theme* theme : themes()) {
    for (const Tint tint : {Tint::green, Tint::orange, Tint::red, Tint::secondary}) {
      EXPECT_GE(contrast(theme->color(tint), theme->background), minimumContrast);
    }
  }
}

TEST(Theme, KeepsTheTextOfControlsReadable) {
  for (const Theme* theme : themes()) {
    for (const QColor& fill : {theme->control, theme->controlHover, theme->controlSelected}) {
      EXPECT_GE(contrast(theme->primary, onBackground(fill, theme->background)), textContrast);
    }
    EXPECT_GE(contrast(theme->accent, theme->background), minimumContrast) << "a checked box";
    EXPECT_GE(contrast(Qt::white, theme->accent), minimumContrast) << "the check mark";
  }
}

TEST(Theme, KeepsTheFocusRingVisibleOnEveryFill) {
  for (const Theme* theme : themes()) {
    EXPECT_GE(contrast(theme->focusRing, theme->background), minimumContrast);
    for (const QColor& fill :
         {theme->highlight, theme->control, theme->controlHover, theme->controlSelected}) {
      EXPECT_GE(contrast(theme->focusRing, onBackground(fill, theme->background)), minimumContrast);
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

constexpr int radius = 12;
const QRect frame(10, 10, 100, 80);
const FrameColors colors{QColor(0xfa, 0xfa, 0xfb), QColor(0, 0, 0, 23)};

QImage canvas() {
  QImage image(120, 100, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

/// The frame, drawn by drawRoundedRect().
QImage frameByQt() {
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

int largestDifference(const QImage& first, const QImage& second) {
  int largest = 0;
  for (int y = 0; y < first.height(); ++y) {
    for (int x = 0; x < first.width(); ++x) {
      const QColor left = first.pixelColor(x, y);
      const QColor right = second.pixelColor(x, y);
      // The colours of nearly transparent pixels are not compared.
      if (left.alpha() > 20) largest = std::max(largest, std::abs(left.red() - right.red()));
      largest = std::max(largest, std::abs(left.alpha() - right.alpha()));
    }
  }
  return largest;
}

TEST(RoundedFrame, LooksLikeDrawRoundedRect) {
  QImage image = canvas();
  QPainter painter(&image);
  paintRoundedFrame(painter, frame, radius, colors, image.rect());
  painter.end();
  EXPECT_LE(largestDifference(image, frameByQt()), 12);
  EXPECT_GE(largestDifference(canvas(), frameByQt()), 200) << "the comparison does not detect differences";
}

TEST(RoundedFrame, PaintsNothingOutsideTheDamagedRectangle) {
  QImage image = canvas();
  QPainter painter(&image);
  paintRoundedFrame(painter, frame, radius, colors, QRect(30, 30, 20, 20));
  painter.end();
  EXPECT_EQ(image.pixelColor(35, 35), colors.background);
  EXPECT_EQ(image.pixelColor(60, 35).alpha(), 0);
  EXPECT_EQ(image.pixelColor(12, 12).alpha(), 0);
}

TEST(RenderScheduler, RendersOncePerIterationAfterTheChanges) {
  int value = 0;
  std::vector<int> rendered;
  RenderScheduler scheduler([&] { rendered.push_back(value); });
  scheduler.schedule();
  value = 1;
  scheduler.schedule();
  value = 2;
  EXPECT_TRUE(rendered.empty());
  QCoreApplication::processEvents();
  EXPECT_EQ(rendered, std::vector<int>{2});
  scheduler.schedule();
  value = 3;
  QCoreApplication::processEvents();
  EXPECT_EQ(rendered, (std::vector<int>{2, 3}));
  QCoreApplication::processEvents();
  EXPECT_EQ(rendered.size(), 2U);
}

TEST(RenderScheduler, DoesNotRenderAgainAfterRenderNow) {
  int renderings = 0;
  RenderScheduler scheduler([&] { ++renderings; });
  scheduler.schedule();
  scheduler.renderNow();
  QCoreApplication::processEvents();
  EXPECT_EQ(renderings, 1);
  scheduler.schedule();
  scheduler.renderNow();
  scheduler.schedule();
  QCoreApplication::processEvents();
  EXPECT_EQ(renderings, 3);
}

TEST(RenderScheduler, RendersAgainForAChangeDuringARendering) {
  int renderings = 0;
  std::unique_ptr<RenderScheduler> scheduler;
  scheduler = std::make_unique<RenderScheduler>([&] {
    if (++renderings == 1) scheduler->schedule();
  });
  scheduler->schedule();
  for (int iteration = 0; iteration < 3; ++iteration) QCoreApplication::processEvents();
  EXPECT_EQ(renderings, 2);
}

TEST(RenderScheduler, RendersNothingAfterItsDestruction) {
  int renderings = 0;
  {
    RenderScheduler scheduler([&] { ++renderings; });
    scheduler.schedule();
  }
  QCoreApplication::processEvents();
  EXPECT_EQ(renderings, 0);
}

}  // namespace
}  // namespace tarn
