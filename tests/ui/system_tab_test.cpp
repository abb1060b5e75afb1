// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The System tab: its content and its layout.

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "ui/plain_formatters.hpp"
#include "ui/popover/popover_content.hpp"
#include "ui/popover/system_panel.hpp"
#include "ui/popover_fixture.hpp"

namespace tarn {
namespace {

constexpr std::int64_t gigabyte = std::int64_t{1} << 30;

const StorageInfo disk{"Macintosh HD", 512 * gigabyte, 211 * gigabyte};

std::vector<ExtrasRow> rowsOf(const SystemExtras& extras, ThermalState thermalState) {
  return systemRows(extras, thermalState, plainFormatters());
}

std::vector<std::string> rowLabelsOf(const std::vector<ExtrasRow>& rows) {
  std::vector<std::string> labels;
  labels.reserve(rows.size());
  for (const ExtrasRow& row : rows) labels.push_back(row.label.toStdString());
  return labels;
}

ExtrasRow batteryRow(const BatteryInfo& battery) {
  return rowsOf({.battery = battery}, ThermalState::nominal).front();
}

ExtrasRow temperatureRow(const std::optional<double>& celsius, ThermalState thermalState) {
  return rowsOf({.temperatureCelsius = celsius}, thermalState).front();
}

TEST(SystemRows, ShowStorageBatteryTemperatureAndUptime) {
  const BatteryInfo battery{.percent = 64, .isCharging = false, .cycleCount = 312, .healthPercent = 91};
  EXPECT_EQ(
      rowsOf({.storage = disk, .battery = battery, .temperatureCelsius = 47.2, .uptime = 190'800},
             ThermalState::nominal),
      (std::vector<ExtrasRow>{{"internaldrive", "Storage", "211 GB free", "of 512 GB · Macintosh HD"},
                              {"battery.75", "Battery", "64%", "312 cycles · 91% health"},
                              {"thermometer.medium", "Temperature", "47 °C", "sensor average, approximate"},
                              {"clock", "Uptime", "2 days, 5 hours", std::nullopt}}));
}

TEST(SystemRows, OmitTheBatteryOfADesktopMachine) {
  EXPECT_EQ(rowLabelsOf(rowsOf({.storage = disk}, ThermalState::nominal)),
            (std::vector<std::string>{"Storage", "Temperature", "Uptime"}));
}

TEST(SystemRows, OmitStorageThatCannotBeRead) {
  EXPECT_EQ(rowLabelsOf(rowsOf({.battery = BatteryInfo{}}, ThermalState::nominal)),
            (std::vector<std::string>{"Battery", "Temperature", "Uptime"}));
  EXPECT_EQ(rowLabelsOf(rowsOf({}, ThermalState::nominal)),
            (std::vector<std::string>{"Temperature", "Uptime"}));
}

TEST(SystemRows, ShowTheLargestCapacities) {
  constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
  const ExtrasRow row = rowsOf({.storage = StorageInfo{"", largest, largest}}, ThermalState::nominal).front();
  EXPECT_TRUE(row.value.endsWith(QStringLiteral(" free"))) << row.value.toStdString();
  EXPECT_FALSE(row.value.startsWith(u'-')) << row.value.toStdString();
}

TEST(SystemRows, ShowTheVolumeNameThroughDisplayText) {
  const StorageInfo hostile{"<b>a</b>\n\u202Eb\x01", 0, 0};
  const ExtrasRow row = rowsOf({.storage = hostile}, ThermalState::nominal).front();
  EXPECT_TRUE(row.secondary->startsWith(QStringLiteral("of 0 bytes · <b>a</b>")))
      << row.secondary->toStdString();
  for (const QChar character : *row.secondary) {
    EXPECT_TRUE(character.isPrint()) << static_cast<int>(character.unicode());
    EXPECT_NE(character, QChar(u'\u202E'));
  }
}

TEST(BatteryRow, ShowsTheLevelToTheNearestQuarter) {
  struct Case {
    std::int64_t percent;
    const char* icon;
  };
  for (const Case& level : std::vector<Case>{{-5, "battery.0"},
                                             {0, "battery.0"},
                                             {12, "battery.0"},
                                             {13, "battery.25"},
                                             {37, "battery.25"},
                                             {38, "battery.50"},
                                             {62, "battery.50"},
                                             {63, "battery.75"},
                                             {87, "battery.75"},
                                             {88, "battery.100"},
                                             {100, "battery.100"}}) {
    const ExtrasRow row = batteryRow({.percent = level.percent});
    EXPECT_EQ(row.symbol.toStdString(), level.icon) << level.percent;
    EXPECT_EQ(row.value.toStdString(), std::to_string(level.percent) + '%');
  }
}

TEST(BatteryRow, ShowsABoltWhileChargingAtEveryLevel) {
  for (const int percent : {0, 40, 100}) {
    const ExtrasRow row = batteryRow({.percent = percent, .isCharging = true});
    EXPECT_EQ(row.symbol, "battery.100.bolt");
    EXPECT_EQ(row.value.toStdString(), std::to_string(percent) + "% charging");
  }
}

TEST(BatteryRow, ShowsCyclesAndHealthIfKnown) {
  EXPECT_EQ(batterySecondary({.cycleCount = 312, .healthPercent = 91}), "312 cycles · 91% health");
  EXPECT_EQ(batterySecondary({.cycleCount = 312}), "312 cycles");
  EXPECT_EQ(batterySecondary({.healthPercent = 91}), "91% health");
  EXPECT_EQ(batterySecondary({.cycleCount = 0}), "0 cycles");
  EXPECT_EQ(batterySecondary({}), std::nullopt);
  EXPECT_EQ(batteryRow({.percent = 64}).secondary, std::nullopt);
}

TEST(TemperatureRow, RoundsHalvesAwayFromZero) {
  const auto value = [](double celsius) {
    return temperatureValue(celsius, ThermalState::critical).toStdString();
  };
  EXPECT_EQ(value(47.2), "47 °C");
  EXPECT_EQ(value(46.5), "47 °C");
  EXPECT_EQ(value(46.49), "46 °C");
  EXPECT_EQ(value(-0.5), "-1 °C");
  EXPECT_EQ(value(-0.4), "0 °C");
  EXPECT_EQ(value(119.9), "120 °C");
}

TEST(TemperatureRow, ShowsTheThermalStateWithoutAReading) {
  EXPECT_EQ(temperatureValue(std::nullopt, ThermalState::nominal), "Running cool");
  EXPECT_EQ(temperatureValue(std::nullopt, ThermalState::fair), "Warming up");
  EXPECT_EQ(temperatureValue(std::nullopt, ThermalState::critical), "Overheating");
  EXPECT_EQ(temperatureValue(std::nullopt, ThermalState::unknown), "Temperature unknown");
  EXPECT_EQ(temperatureValue(std::nullopt, static_cast<ThermalState>(7)), "Temperature unknown");
  EXPECT_EQ(temperatureValue(std::numeric_limits<double>::quiet_NaN(), ThermalState::fair), "Warming up");
  EXPECT_EQ(temperatureRow(std::nullopt, ThermalState::serious),
            (ExtrasRow{"thermometer.medium", "Temperature", "Running hot", std::nullopt}));
}

/// A laptop that runs on its battery. All its figures are known.
class SystemTab : public ::testing::Test {
 protected:
  SystemTab() {
    fixture_.extras.volume = VolumeValues{512 * gigabyte, 211 * gigabyte, "debian"};
    fixture_.extras.powerSources = {internalBattery(64, 100)};
    fixture_.extras.batteryController = PropertyDictionary{{"CycleCount", std::int64_t{312}},
                                                           {"DesignCapacity", std::int64_t{100}},
                                                           {"MaxCapacity", std::int64_t{91}}};
    fixture_.extras.temperatures = {47.2};
    fixture_.extras.uptime = 190'800;
  }

  /// The popover with the System tab, after the first extras were read.
  PopoverView& show(const Theme& theme = Theme::light()) {
    fixture_.sweep();
    PopoverView& view = fixture_.showView(theme);
    selectTab(view, QStringLiteral("System"));
    fixture_.sweep();
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

  PopoverFixture fixture_;
};

using Texts = std::vector<QString>;

TEST_F(SystemTab, ShowsReadingUntilTheFirstExtrasArrive) {
  fixture_.sweep();
  PopoverView& view = fixture_.showView();
  selectTab(view, QStringLiteral("System"));
  EXPECT_EQ(textsOf(view), Texts{"Reading…"});
  fixture_.sweep();
  EXPECT_EQ(labelWithText(view, QStringLiteral("Reading…")), nullptr);
}

TEST_F(SystemTab, ShowsAllRowsInOrder) {
  EXPECT_EQ(textsOf(show()), (Texts{"Storage", "of 512 GB · debian", "211 GB free", "Battery",
                                    "312 cycles · 91% health", "64%", "Temperature",
                                    "sensor average, approximate", "47 °C", "Uptime", "2 days, 5 hours"}));
}

TEST_F(SystemTab, RemovesAndAddsARowWhenItsFigureDisappearsAndReturns) {
  const PopoverView& view = show();
  const int height = view.height();
  const auto battery = fixture_.extras.powerSources;
  fixture_.extras.powerSources.clear();
  fixture_.sweep();
  EXPECT_EQ(textsOf(view), (Texts{"Storage", "of 512 GB · debian", "211 GB free", "Temperature",
                                  "sensor average, approximate", "47 °C", "Uptime", "2 days, 5 hours"}));
  EXPECT_EQ(view.height(), height - 43) << "a row of two lines and the space below it";
  fixture_.extras.powerSources = battery;
  fixture_.sweep();
  EXPECT_EQ(rowsOf(view).size(), 4U);
  EXPECT_EQ(view.height(), height);
}

TEST_F(SystemTab, ShowsTheThermalStateWithoutASecondLineIfNoSensorAnswers) {
  fixture_.extras.temperatures.clear();
  fixture_.extras.thermalState = ThermalState::serious;
  const PopoverView& view = show();
  const auto labels = labelsOf(*rowsOf(view)[2]);
  ASSERT_EQ(labels.size(), 2U);
  EXPECT_EQ(labels[0]->text(), "Temperature");
  EXPECT_EQ(labels[1]->text(), "Running hot");
}

TEST_F(SystemTab, KeepsTheLastFiguresDuringANewReading) {
  PopoverView& view = show();
  const Texts before = textsOf(view);
  view.hide();
  fixture_.extras.uptime = 60;
  view.show();
  PopoverFixture::settle();
  EXPECT_EQ(textsOf(view), before);
  fixture_.sweep();
  EXPECT_EQ(textsOf(view).back(), "1 min");
}

TEST_F(SystemTab, UpdatesItsRowsInPlace) {
  const PopoverView& view = show();
  const auto before = rowsOf(view);
  fixture_.extras.temperatures = {51};
  fixture_.sweep();
  EXPECT_EQ(rowsOf(view), before);
  EXPECT_NE(labelWithText(view, QStringLiteral("51 °C")), nullptr);
}

TEST_F(SystemTab, AlignsItsRowsLikeTheApplicationRows) {
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

TEST_F(SystemTab, ElidesALongVolumeNameAndKeepsTheFigure) {
  fixture_.extras.volume->name = std::string(500, 'W');
  const PopoverView& view = show();
  const ExtrasRowView* row = rowsOf(view).front();
  EXPECT_EQ(view.width(), 320);
  EXPECT_EQ(row->height(), 35);
  EXPECT_EQ(frameIn(view, *row->findChild<FigureLabel*>()).right(), 305);
  const QLabel* secondary = labelsOf(*row)[1];
  EXPECT_LT(secondary->width(), QFontMetrics(secondary->font()).horizontalAdvance(secondary->text()));
}

TEST_F(SystemTab, ShowsTheSameThermalStateOnTheCPUTab) {
  fixture_.extras.thermalState = ThermalState::fair;
  PopoverView& view = show();
  selectTab(view, QStringLiteral("CPU"));
  const auto labels = labelsOf(view);
  EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
    return label->accessibleName().endsWith(QStringLiteral(" cores in use · Warming up"));
  }));
}

}  // namespace
}  // namespace tarn
