// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/power_supplies.hpp"

#include <gtest/gtest.h>

#include "extras/battery.hpp"
#include "platform/linux/sysfs/machine_tree.hpp"

namespace tarn {
namespace {

class PowerSuppliesTest : public ::testing::Test {
 protected:
  std::optional<BatteryInfo> battery() {
    return BatteryInfo::read({.powerSources = [this] { return supplies_.sources(); },
                              .batteryController = [this] { return supplies_.controller(); }});
  }

  void set(const std::string& supply, const std::string& file, const std::string& text) {
    tree_.write("sys/class/power_supply/" + supply + '/' + file, text + '\n');
  }

  TemporaryTree tree_;
  PowerSupplies supplies_{tree_.roots().sys};
};

TEST_F(PowerSuppliesTest, ReportsChangesOfTheCharge) {
  writeMachine(tree_, "laptop-low");
  EXPECT_EQ(battery()->percent, 12);
  set("BAT0", "energy_now", "3742000");
  set("BAT0", "status", "Charging");
  EXPECT_EQ(battery()->percent, 10);
  EXPECT_TRUE(battery()->isCharging);
}

TEST_F(PowerSuppliesTest, ReportsAnAddedAndARemovedBattery) {
  EXPECT_EQ(battery(), std::nullopt);
  writeMachine(tree_, "laptop-low");
  EXPECT_EQ(battery()->percent, 12);
  tree_.remove("sys/class/power_supply/BAT0");
  EXPECT_EQ(battery(), std::nullopt);
}

TEST_F(PowerSuppliesTest, IgnoresABatteryThatIsNotPresent) {
  writeMachine(tree_, "laptop-two-packs");
  EXPECT_TRUE(battery()->isCharging);
  set("BAT1", "present", "0");
  EXPECT_EQ(battery(), (BatteryInfo{.percent = 90, .cycleCount = 204, .healthPercent = 85}));
  set("BAT0", "present", "0");
  EXPECT_EQ(battery(), std::nullopt);
}

TEST_F(PowerSuppliesTest, IncludesABatteryWithoutPresentAttribute) {
  set("BAT0", "type", "Battery");
  set("BAT0", "capacity", "33");
  EXPECT_EQ(battery()->percent, 33);
}

TEST_F(PowerSuppliesTest, AveragesPercentagesWithoutEnergyAndCharge) {
  for (const auto* pack : {"BAT0", "BAT1"}) set(pack, "type", "Battery");
  set("BAT0", "capacity", "90");
  set("BAT1", "capacity", "41");
  EXPECT_EQ(battery()->percent, 66);
}

TEST_F(PowerSuppliesTest, FallsBackToPercentagesWhenSumsOverflow) {
  writeMachine(tree_, "laptop-two-packs");
  for (const auto* file : {"energy_now", "energy_full", "energy_full_design"}) {
    for (const auto* pack : {"BAT0", "BAT1"}) set(pack, file, "9000000000000000000");
  }
  EXPECT_EQ(battery(), (BatteryInfo{.percent = 62, .isCharging = true, .cycleCount = 471}));
}

TEST_F(PowerSuppliesTest, IgnoresPeripheralBatteriesAndOtherSupplies) {
  set("BAT0", "type", "Battery");
  set("BAT0", "capacity", "33");
  set("BAT0", "scope", "Device");
  EXPECT_EQ(battery(), std::nullopt);
  for (const auto* type : {"UPS", "USB", "Mains", "battery", ""}) {
    tree_.remove("sys/class/power_supply/BAT0");
    EXPECT_EQ(battery(), std::nullopt);
    set("BAT0", "capacity", "33");
    set("BAT0", "type", type);
    EXPECT_EQ(battery(), std::nullopt) << type;
  }
}

TEST_F(PowerSuppliesTest, FallsBackToTheNextUnitWhenCapacityIsZero) {
  set("BAT0", "type", "Battery");
  for (const auto* file : {"energy_now", "energy_full", "energy_full_design"}) set("BAT0", file, "0");
  set("BAT0", "capacity", "57");
  EXPECT_EQ(battery(), (BatteryInfo{.percent = 57}));
  set("BAT1", "type", "Battery");
  set("BAT1", "charge_now", "900");
  set("BAT1", "charge_full", "1000");
  set("BAT1", "charge_full_design", "1250");
  EXPECT_EQ(battery(), (BatteryInfo{.percent = 90, .healthPercent = 80}));
}

TEST_F(PowerSuppliesTest, IgnoresABatteryUntilItsTypeAndScopeCanBeRead) {
  set("hidpp_battery_0", "type", "Battery");
  set("hidpp_battery_0", "capacity", "55");
  tree_.write("sys/class/power_supply/hidpp_battery_0/scope", "");
  EXPECT_EQ(battery(), std::nullopt);
  set("hidpp_battery_0", "scope", "Device");
  EXPECT_EQ(battery(), std::nullopt);
  set("BAT0", "capacity", "33");
  tree_.write("sys/class/power_supply/BAT0/type", "");
  EXPECT_EQ(battery(), std::nullopt);
  set("BAT0", "type", "Battery");
  EXPECT_EQ(battery()->percent, 33);
}

TEST_F(PowerSuppliesTest, HasNoControllerWhenOnlyPercentagesAreReported) {
  writeMachine(tree_, "tablet-percent-only");
  EXPECT_EQ(supplies_.sources().size(), 1U);
  EXPECT_EQ(supplies_.controller(), std::nullopt);
}

}  // namespace
}  // namespace tarn
