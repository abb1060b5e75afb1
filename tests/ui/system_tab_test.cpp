// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The System tab: what it shows, and where everything lies.

#include "ui/popover/system_panel.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "ui/popover_fixture.hpp"

namespace tarn {
namespace {

/// A laptop on battery, with everything that there is to know.
class SystemTab : public ::testing::Test {
 protected:
  SystemTab() {
    constexpr std::int64_t gigabyte = std::int64_t{1} << 30;
    stage_.extras.volume = VolumeValues{512 * gigabyte, 211 * gigabyte, "debian"};
    stage_.extras.powerSources = {internalBattery(64, 100)};
    stage_.extras.batteryController = PropertyDictionary{{"CycleCount", std::int64_t{312}},
                                                         {"DesignCapacity", std::int64_t{100}},
                                                         {"MaxCapacity", std::int64_t{91}}};
    stage_.extras.temperatures = {47.2};
    stage_.extras.uptime = 190'800;
  }

  /// The popover with the System tab, its first extras read.
  PopoverView& show(const Theme& theme = Theme::light()) {
    stage_.sweep();
    PopoverView& view = stage_.showView(theme);
    choose(view, QStringLiteral("System"));
    stage_.sweep();
    return view;
  }

  std::vector<QString> textsOf(const QWidget& view) {
    std::vector<QString> texts;
    for (const QLabel* label : labelsOf(*view.findChild<SystemPanel*>())) texts.push_back(label->text());
    return texts;
  }

  std::vector<ExtrasRowView*> rowsOf(const QWidget& view) {
    const auto rows = view.findChild<SystemPanel*>()->findChildren<ExtrasRowView*>();
    return {rows.begin(), rows.end()};
  }

  PopoverStage stage_;
};

using Texts = std::vector<QString>;

TEST_F(SystemTab, SaysThatItIsReadingUntilTheFirstExtrasArrive) {
  stage_.sweep();
  PopoverView& view = stage_.showView();
  choose(view, QStringLiteral("System"));
  EXPECT_EQ(textsOf(view), Texts{"Reading…"});
  stage_.sweep();
  EXPECT_EQ(labelWithText(view, QStringLiteral("Reading…")), nullptr);
}

TEST_F(SystemTab, ShowsEveryFactInTheOrderInWhichItIsRead) {
  EXPECT_EQ(textsOf(show()), (Texts{"Storage", "of 512 GB · debian", "211 GB free", "Battery",
                                    "312 cycles · 91% health", "64%", "Temperature",
                                    "sensor average, approximate", "47 °C", "Uptime", "2 days, 5 hours"}));
}

TEST_F(SystemTab, ClosesUpWhenAFactIsGoneAndMakesRoomWhenItComesBack) {
  const PopoverView& view = show();
  const int height = view.height();
  const auto battery = stage_.extras.powerSources;
  stage_.extras.powerSources.clear();
  stage_.sweep();
  EXPECT_EQ(textsOf(view), (Texts{"Storage", "of 512 GB · debian", "211 GB free", "Temperature",
                                  "sensor average, approximate", "47 °C", "Uptime", "2 days, 5 hours"}));
  EXPECT_EQ(view.height(), height - 43) << "a row of two lines and the space below it";
  stage_.extras.powerSources = battery;
  stage_.sweep();
  EXPECT_EQ(rowsOf(view).size(), 4U);
  EXPECT_EQ(view.height(), height);
}

TEST_F(SystemTab, SaysRunningHotWithoutASecondLineWhereNoSensorAnswers) {
  stage_.extras.temperatures.clear();
  stage_.extras.thermalState = ThermalState::serious;
  const PopoverView& view = show();
  const auto labels = labelsOf(*rowsOf(view)[2]);
  ASSERT_EQ(labels.size(), 2U);
  EXPECT_EQ(labels[0]->text(), "Temperature");
  EXPECT_EQ(labels[1]->text(), "Running hot");
}

TEST_F(SystemTab, KeepsTheLastFactsWhileANewReadingIsUnderWay) {
  PopoverView& view = show();
  const Texts before = textsOf(view);
  view.hide();
  stage_.extras.uptime = 60;
  view.show();
  PopoverStage::settle();
  EXPECT_EQ(textsOf(view), before);
  stage_.sweep();
  EXPECT_EQ(textsOf(view).back(), "1 min");
}

TEST_F(SystemTab, UpdatesTheRowsThatAreThere) {
  const PopoverView& view = show();
  const auto before = rowsOf(view);
  stage_.extras.temperatures = {51};
  stage_.sweep();
  EXPECT_EQ(rowsOf(view), before);
  EXPECT_NE(labelWithText(view, QStringLiteral("51 °C")), nullptr);
}

TEST_F(SystemTab, AlignsItsRowsWithThoseOfTheApplications) {
  const PopoverView& view = show();
  int previousBottom = dividersOf(view).front().bottom() + 12 - 8;
  for (const ExtrasRowView* row : rowsOf(view)) {
    const auto labels = labelsOf(*row);
    const QRect frame = frameIn(view, *row);
    const QRect icon = frameIn(view, *row->findChild<GlyphView*>());
    const QRect label = frameIn(view, *labels.front());
    const QRect value = frameIn(view, *row->findChild<FigureLabel*>());
    EXPECT_EQ(frame.top(), previousBottom + 1 + 8);
    EXPECT_EQ(frame.height(), labels.size() == 3 ? 1 + 18 + 1 + 14 + 1 : 1 + 18 + 1);
    EXPECT_EQ(icon.size(), QSize(18, 18));
    EXPECT_EQ(icon.left(), 14);
    EXPECT_LE(std::abs(icon.center().y() - frame.center().y()), 1);
    EXPECT_EQ(label.left(), 14 + 18 + 8);
    EXPECT_EQ(label.top(), frame.top() + 1);
    EXPECT_EQ(value.right(), 305);
    EXPECT_LE(std::abs(value.center().y() - frame.center().y()), 1);
    previousBottom = frame.bottom();
  }
  EXPECT_EQ(dividersOf(view)[1].top(), previousBottom + 1 + 12);
}

TEST_F(SystemTab, SetsItsTextsInTheirFontsAndStylesInBothThemes) {
  for (const Theme* theme : {&Theme::light(), &Theme::dark()}) {
    const PopoverView& view = show(*theme);
    for (const ExtrasRowView* row : rowsOf(view)) {
      const auto labels = labelsOf(*row);
      EXPECT_EQ(labels.front()->font().pixelSize(), 12);
      EXPECT_EQ(labels.front()->font().weight(), QFont::Medium);
      EXPECT_EQ(labels.front()->palette().color(labels.front()->foregroundRole()), theme->primary);
      EXPECT_EQ(labels.back()->font().pixelSize(), 12);
      EXPECT_EQ(labels.back()->font().weight(), QFont::Normal);
      EXPECT_EQ(labels.back()->palette().color(labels.back()->foregroundRole()), theme->secondary);
      EXPECT_EQ(row->findChild<GlyphView*>()->color(), GlyphView::Color(TextStyle::secondary));
      if (labels.size() < 3) continue;
      EXPECT_EQ(labels[1]->font().pixelSize(), 10);
      EXPECT_EQ(labels[1]->palette().color(labels[1]->foregroundRole()), theme->secondary);
    }
  }
}

TEST_F(SystemTab, CutsALongVolumeNameAndKeepsTheFigure) {
  stage_.extras.volume->name = std::string(500, 'W');
  const PopoverView& view = show();
  const ExtrasRowView* row = rowsOf(view).front();
  EXPECT_EQ(view.width(), 320);
  EXPECT_EQ(row->height(), 35);
  EXPECT_EQ(frameIn(view, *row->findChild<FigureLabel*>()).right(), 305);
  const QLabel* secondary = labelsOf(*row)[1];
  EXPECT_LT(secondary->width(), QFontMetrics(secondary->font()).horizontalAdvance(secondary->text()));
}

TEST_F(SystemTab, ShowsTheThermalStateOfTheSameGatheringOnTheCPUTab) {
  stage_.extras.thermalState = ThermalState::fair;
  PopoverView& view = show();
  choose(view, QStringLiteral("CPU"));
  const auto labels = labelsOf(view);
  EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
    return label->accessibleName().endsWith(QStringLiteral(" cores in use · Warming up"));
  }));
}

}  // namespace
}  // namespace tarn
