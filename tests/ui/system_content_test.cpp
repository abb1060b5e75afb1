// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/system_content.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace tarn {
namespace {

constexpr std::uint64_t gigabyte = std::uint64_t{1} << 30;

const StorageInfo disk{"Macintosh HD", 512 * gigabyte, 211 * gigabyte};

std::vector<std::string> labelsOf(const std::vector<ExtrasRow>& rows) {
  std::vector<std::string> labels;
  labels.reserve(rows.size());
  for (const ExtrasRow& row : rows) labels.push_back(row.label.toStdString());
  return labels;
}

ExtrasRow batteryRow(const BatteryInfo& battery) {
  return systemRows({.battery = battery}, ThermalState::nominal).front();
}

ExtrasRow temperatureRow(const std::optional<double>& celsius, ThermalState thermalState) {
  return systemRows({.temperatureCelsius = celsius}, thermalState).front();
}

TEST(SystemRows, TellStorageBatteryTemperatureAndUptime) {
  const BatteryInfo battery{.percent = 64, .isCharging = false, .cycleCount = 312, .healthPercent = 91};
  EXPECT_EQ(
      systemRows({.storage = disk, .battery = battery, .temperatureCelsius = 47.2, .uptime = 190'800},
                 ThermalState::nominal),
      (std::vector<ExtrasRow>{{"internaldrive", "Storage", "211 GB free", "of 512 GB · Macintosh HD"},
                              {"battery.75", "Battery", "64%", "312 cycles · 91% health"},
                              {"thermometer.medium", "Temperature", "47 °C", "sensor average, approximate"},
                              {"clock", "Uptime", "2 days, 5 hours", std::nullopt}}));
}

TEST(SystemRows, LeaveOutTheBatteryOfADesktopMachine) {
  EXPECT_EQ(labelsOf(systemRows({.storage = disk}, ThermalState::nominal)),
            (std::vector<std::string>{"Storage", "Temperature", "Uptime"}));
}

TEST(SystemRows, LeaveOutStorageThatCannotBeRead) {
  EXPECT_EQ(labelsOf(systemRows({.battery = BatteryInfo{}}, ThermalState::nominal)),
            (std::vector<std::string>{"Battery", "Temperature", "Uptime"}));
  EXPECT_EQ(labelsOf(systemRows({}, ThermalState::nominal)),
            (std::vector<std::string>{"Temperature", "Uptime"}));
}

TEST(SystemRows, TellTheLargestCapacities) {
  constexpr auto most = std::numeric_limits<std::uint64_t>::max();
  const ExtrasRow row = systemRows({.storage = StorageInfo{"", most, most}}, ThermalState::nominal).front();
  EXPECT_TRUE(row.value.endsWith(QStringLiteral(" free"))) << row.value.toStdString();
  EXPECT_FALSE(row.value.startsWith(u'-')) << row.value.toStdString();
}

TEST(SystemRows, ShowAVolumesNameAsInertText) {
  const StorageInfo hostile{"<b>a</b>\n\u202Eb\x01", 0, 0};
  const ExtrasRow row = systemRows({.storage = hostile}, ThermalState::nominal).front();
  EXPECT_TRUE(row.secondary->startsWith(QStringLiteral("of 0 bytes · <b>a</b>")))
      << row.secondary->toStdString();
  for (const QChar character : *row.secondary) {
    EXPECT_TRUE(character.isPrint()) << static_cast<int>(character.unicode());
    EXPECT_NE(character, QChar(u'\u202E'));
  }
}

TEST(BatteryRow, DrawsTheLevelToTheNearestQuarter) {
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
    EXPECT_EQ(row.icon.toStdString(), level.icon) << level.percent;
    EXPECT_EQ(row.value.toStdString(), std::to_string(level.percent) + '%');
  }
}

TEST(BatteryRow, DrawsABoltWhileChargingWhateverTheLevel) {
  for (const int percent : {0, 40, 100}) {
    const ExtrasRow row = batteryRow({.percent = percent, .isCharging = true});
    EXPECT_EQ(row.icon, "battery.100.bolt");
    EXPECT_EQ(row.value.toStdString(), std::to_string(percent) + "% charging");
  }
}

TEST(BatteryRow, TellsCyclesAndHealthAsFarAsTheyAreKnown) {
  EXPECT_EQ(batterySecondary({.cycleCount = 312, .healthPercent = 91}), "312 cycles · 91% health");
  EXPECT_EQ(batterySecondary({.cycleCount = 312}), "312 cycles");
  EXPECT_EQ(batterySecondary({.healthPercent = 91}), "91% health");
  EXPECT_EQ(batterySecondary({.cycleCount = 0}), "0 cycles");
  EXPECT_EQ(batterySecondary({}), std::nullopt);
  EXPECT_EQ(batteryRow({.percent = 64}).secondary, std::nullopt);
}

TEST(TemperatureRow, RoundsToWholeDegreesHalvesAwayFromZero) {
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

TEST(TemperatureRow, SaysTheThermalStateWithoutAReading) {
  EXPECT_EQ(temperatureValue(std::nullopt, ThermalState::nominal), "Running cool");
  EXPECT_EQ(temperatureValue(std::nullopt, ThermalState::fair), "Warming up");
  EXPECT_EQ(temperatureValue(std::nullopt, ThermalState::critical), "Overheating");
  EXPECT_EQ(temperatureValue(std::nullopt, ThermalState::unknown), "Temperature unknown");
  EXPECT_EQ(temperatureValue(std::nullopt, static_cast<ThermalState>(7)), "Temperature unknown");
  EXPECT_EQ(temperatureValue(std::numeric_limits<double>::quiet_NaN(), ThermalState::fair), "Warming up");
  EXPECT_EQ(temperatureRow(std::nullopt, ThermalState::serious),
            (ExtrasRow{"thermometer.medium", "Temperature", "Running hot", std::nullopt}));
}

}  // namespace
}  // namespace tarn
