// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <QImage>
#include <set>

#include "ui/contrast.hpp"
#include "ui/menu_bar/menu_bar_icon.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {
namespace {

const QColor lightBar(0xf3f3f4);
const QColor darkBar(0x1f1f22);

MenuBarLabel labelFor(MemoryPressure pressure, std::uint64_t swapUsed) {
  return menuBarLabel({pressure, swapUsed}, std::nullopt, false, std::nullopt);
}

TEST(MenuBarLabel, ShowsEveryStatusAsACircleATintAndWords) {
  struct Case {
    MemoryPressure pressure;
    std::uint64_t swapUsed;
    const char* symbol;
    Tint tint;
    const char* words;
    const char* verdict;
  };
  for (const Case& one :
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
    const MenuBarLabel label = labelFor(one.pressure, one.swapUsed);
    EXPECT_EQ(label.symbolName, one.symbol);
    EXPECT_EQ(label.tint, one.tint) << one.words;
    EXPECT_EQ(label.accessibilityText, one.words);
    EXPECT_EQ(label.hover.verdict, one.verdict);
    EXPECT_FALSE(label.text.has_value());
  }
}

TEST(MenuBarLabel, ShowsAFigureOnlyWhenItIsWantedAndKnown) {
  const auto text = [](bool wanted, std::optional<std::uint64_t> footprint) {
    return menuBarLabel({}, std::nullopt, wanted, footprint).text;
  };
  EXPECT_EQ(text(false, std::nullopt), std::nullopt);
  EXPECT_EQ(text(false, 1024), std::nullopt);
  EXPECT_EQ(text(true, std::nullopt), std::nullopt);
  EXPECT_EQ(text(true, 1536 * 1024), "1.5 MB");
}

TEST(MenuBarLabel, ShowsAFootprintOfNothing) {
  EXPECT_EQ(menuBarLabel({}, std::nullopt, true, 0).text, "0 bytes");
}

TEST(MenuBarLabel, CarriesTheMemoryFiguresForATooltip) {
  EXPECT_EQ(menuBarLabel({}, std::nullopt, false, {}).hover.detail, "");
  EXPECT_EQ(menuBarLabel({}, MemorySnapshot{}, false, {}).hover.detail,
            "Wired 0 bytes · Compressed 0 bytes · Cached files 0 bytes · Swap 0 bytes");
}

TEST(MenuBarIcon, IsTransparentForAnUnknownName) {
  const QImage image = MenuBarIcon::image("no.such.symbol", Qt::red, 22);
  ASSERT_EQ(image.size(), QSize(22, 22));
  for (int y = 0; y < 22; ++y) {
    for (int x = 0; x < 22; ++x) ASSERT_EQ(qAlpha(image.pixel(x, y)), 0);
  }
}

TEST(MenuBarIcon, HasTheColourAskedForAndNoOther) {
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

TEST(MenuBarIcon, TellsTheStatesApartByShapeToo) {
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

TEST(MenuBarIcon, StandsOutOnALightBarAndOnADarkOne) {
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

MenuBarHover hoverOf(const SystemMemory& memory) {
  return {.verdict = QStringLiteral("All is well."), .detail = QStringLiteral("Wired …"), .memory = memory};
}

TEST(HoverToTell, IsTheSameAgainWhileTheFiguresHardlyMove) {
  const MenuBarHover told = hoverOf({.wired = 1000 * megabyte, .cachedFiles = 50 * megabyte});
  MenuBarHover now = hoverOf({.wired = 1050 * megabyte, .cachedFiles = 70 * megabyte});
  now.detail = QStringLiteral("Wired, a little more");
  EXPECT_EQ(hoverToTell(told, now, false), told);
  now.memory->wired += megabyte;
  EXPECT_EQ(hoverToTell(told, now, false), now) << "more than 5 percent";
  now = hoverOf({.wired = 1000 * megabyte, .cachedFiles = 29 * megabyte});
  EXPECT_EQ(hoverToTell(told, now, false), now) << "less, by more than 20 MB";
  EXPECT_EQ(hoverToTell(told, hoverOf({.wired = 1000 * megabyte, .swapUsed = 21 * megabyte}), false)
                .memory->swapUsed,
            21 * megabyte);
  EXPECT_EQ(hoverToTell(told, hoverOf({.wired = 1000 * megabyte, .compressed = 21 * megabyte}), false)
                .memory->compressed,
            21 * megabyte);
}

TEST(HoverToTell, IsNewWhenTheVerdictOrTheFootprintIs) {
  const MenuBarHover told = hoverOf({});
  MenuBarHover now = told;
  now.verdict = QStringLiteral("All is lost.");
  EXPECT_EQ(hoverToTell(told, now, false), now);
  now = told;
  now.text = QStringLiteral("3 MB");
  EXPECT_EQ(hoverToTell(told, now, false), now);
  EXPECT_EQ(hoverToTell({}, told, false), told) << "the first figures";
}

TEST(HoverToTell, WaitsWhileThePopoverIsOpenButForWhatIsSwitched) {
  const MenuBarHover told = hoverOf({});
  MenuBarHover now = hoverOf({.wired = 5000 * megabyte});
  now.verdict = QStringLiteral("All is lost.");
  EXPECT_EQ(hoverToTell(told, now, true), told);
  now.text = QStringLiteral("3 MB");
  EXPECT_EQ(hoverToTell(told, now, true), now);
}

}  // namespace
}  // namespace tarn
