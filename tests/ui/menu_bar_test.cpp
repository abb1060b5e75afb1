// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <QImage>
#include <set>

#include "ui/image_analysis.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"
#include "ui/plain_formatters.hpp"

namespace tarn {
namespace {

// Colours of a light and of a dark desktop panel.
const QColor lightBar(0xf3f3f4);
const QColor darkBar(0x1f1f22);

MenuBarLabel labelFor(const StatusPresentation& status,
                      const std::optional<MemorySnapshot>& snapshot = std::nullopt) {
  return menuBarLabel(status, snapshot, false, std::nullopt, plainFormatters());
}

std::optional<QString> textFor(bool showFootprint, std::optional<std::uint64_t> footprint) {
  return menuBarLabel({}, std::nullopt, showFootprint, footprint, plainFormatters()).text;
}

TEST(MenuBarLabel, ShowsEveryStatusAsSymbolTintAndText) {
  struct Case {
    MemoryPressure pressure;
    std::uint64_t swapUsed;
    const char* symbol;
    Tint tint;
    const char* accessibilityText;
    const char* status;
  };
  for (const Case& expected :
       {Case{MemoryPressure::critical, 0, "circle.fill", Tint::red, "Memory pressure critical",
             "Your Mac is out of memory. Close something now."},
        Case{MemoryPressure::critical, 9, "circle.fill", Tint::red, "Memory pressure critical",
             "Your Mac is out of memory. Close something now."},
        Case{MemoryPressure::warning, 0, "circle.lefthalf.filled", Tint::orange, "Memory pressure warning",
             "Your Mac is running short on memory. Closing an app below would help."},
        Case{MemoryPressure::normal, 1, "circle.lefthalf.filled", Tint::orange, "Memory normal, using swap",
             "Your Mac is coping, but has started using the disk as overflow."},
        Case{MemoryPressure::normal, 0, "circle", Tint::green, "Memory normal",
             "Your Mac has memory to spare."}}) {
    const MenuBarLabel label = labelFor({expected.pressure, expected.swapUsed});
    EXPECT_EQ(label.symbolName, expected.symbol);
    EXPECT_EQ(label.tint, expected.tint) << expected.accessibilityText;
    EXPECT_EQ(label.accessibilityText, expected.accessibilityText);
    EXPECT_EQ(label.toolTip.status, expected.status);
    EXPECT_FALSE(label.text.has_value());
  }
}

TEST(MenuBarLabel, ShowsAFootprintOnlyIfEnabledAndKnown) {
  EXPECT_EQ(textFor(false, std::nullopt), std::nullopt);
  EXPECT_EQ(textFor(false, 1024), std::nullopt);
  EXPECT_EQ(textFor(true, std::nullopt), std::nullopt);
  EXPECT_EQ(textFor(true, 1536 * 1024), "1.5 MB");
}

TEST(MenuBarLabel, ShowsAFootprintOfZero) {
  EXPECT_EQ(textFor(true, 0), "0 bytes");
}

TEST(MenuBarLabel, HasTheMemoryFiguresInItsToolTip) {
  EXPECT_EQ(labelFor({}).toolTip.detail, "");
  EXPECT_EQ(labelFor({}, MemorySnapshot{}).toolTip.detail,
            "Wired 0 bytes · Compressed 0 bytes · Cached files 0 bytes · Swap 0 bytes");
}

TEST(MenuBarIcon, IsTransparentForAnUnknownName) {
  const QImage image = MenuBarIcon::image("no.such.symbol", Qt::red, 22);
  ASSERT_EQ(image.size(), QSize(22, 22));
  for (int y = 0; y < 22; ++y) {
    for (int x = 0; x < 22; ++x) ASSERT_EQ(qAlpha(image.pixel(x, y)), 0);
  }
}

TEST(MenuBarIcon, HasOnlyTheGivenColour) {
  for (const Tint tint : {Tint::green, Tint::orange, Tint::red}) {
    const QColor color = MenuBarIcon::color(tint);
    const QImage image = MenuBarIcon::image("circle.fill", color, 22);
    EXPECT_EQ(image.pixelColor(11, 11), color);
    int covered = 0;
    for (int y = 0; y < 22; ++y) {
      for (int x = 0; x < 22; ++x) {
        if (qAlpha(image.pixel(x, y)) != 255) continue;
        ++covered;
        ASSERT_EQ(image.pixel(x, y), color.rgba());
      }
    }
    EXPECT_GT(covered, 80);
  }
}

TEST(MenuBarIcon, HasADifferentShapeForEveryStatus) {
  const auto covers = [](const char* name, int x) {
    return qAlpha(MenuBarIcon::image(name, Qt::black, 22).pixel(x, 11)) > 128;
  };
  EXPECT_FALSE(covers("circle", 8));
  EXPECT_FALSE(covers("circle", 13));
  EXPECT_TRUE(covers("circle.lefthalf.filled", 8));
  EXPECT_FALSE(covers("circle.lefthalf.filled", 13));
  EXPECT_TRUE(covers("circle.fill", 8));
  EXPECT_TRUE(covers("circle.fill", 13));
}

TEST(MenuBarIcon, HasEnoughContrastOnLightAndDarkBars) {
  std::set<QRgb> colours;
  for (const Tint tint : {Tint::green, Tint::orange, Tint::red, Tint::secondary}) {
    const QColor color = MenuBarIcon::color(tint);
    colours.insert(color.rgb());
    EXPECT_GE(contrast(color, lightBar), 3.0) << color.name().toStdString();
    EXPECT_GE(contrast(color, darkBar), 3.0) << color.name().toStdString();
  }
  EXPECT_EQ(colours.size(), 4U);
}

constexpr std::uint64_t megabyte = 1 << 20;

ToolTip toolTipOf(const SystemMemory& memory) {
  return {.status = QStringLiteral("Memory normal."), .detail = QStringLiteral("Wired …"), .memory = memory};
}

TEST(ThrottledToolTip, StaysTheSameWhileTheFiguresChangeLittle) {
  const ToolTip sent = toolTipOf({.wired = 1000 * megabyte, .cachedFiles = 50 * megabyte});
  ToolTip current = toolTipOf({.wired = 1050 * megabyte, .cachedFiles = 70 * megabyte});
  current.detail = QStringLiteral("Wired, a little more");
  EXPECT_EQ(throttledToolTip(sent, current, false), sent);
  current.memory->wired += megabyte;
  EXPECT_EQ(throttledToolTip(sent, current, false), current) << "more than 5 percent";
  for (const SystemMemory& memory :
       {SystemMemory{.wired = 1000 * megabyte, .cachedFiles = 29 * megabyte},
        SystemMemory{.wired = 1000 * megabyte, .cachedFiles = 50 * megabyte, .swapUsed = 21 * megabyte},
        SystemMemory{.wired = 1000 * megabyte, .compressed = 21 * megabyte, .cachedFiles = 50 * megabyte}}) {
    EXPECT_EQ(throttledToolTip(sent, toolTipOf(memory), false), toolTipOf(memory)) << "more than 20 MB";
  }
}

TEST(ThrottledToolTip, ChangesWithTheStatusAndTheFootprint) {
  const ToolTip sent = toolTipOf({});
  ToolTip current = sent;
  current.status = QStringLiteral("Memory critical.");
  EXPECT_EQ(throttledToolTip(sent, current, false), current);
  current = sent;
  current.footprint = QStringLiteral("3 MB");
  EXPECT_EQ(throttledToolTip(sent, current, false), current);
  EXPECT_EQ(throttledToolTip({}, sent, false), sent) << "the first figures";
}

TEST(ThrottledToolTip, ChangesWhileThePopoverIsOpenOnlyWhenTheFootprintAppears) {
  const ToolTip sent = toolTipOf({});
  ToolTip current = toolTipOf({.wired = 5000 * megabyte});
  current.status = QStringLiteral("Memory critical.");
  EXPECT_EQ(throttledToolTip(sent, current, true), sent);
  current.footprint = QStringLiteral("3 MB");
  EXPECT_EQ(throttledToolTip(sent, current, true), current);
}

}  // namespace
}  // namespace tarn
