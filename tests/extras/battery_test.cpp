// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "extras/battery.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "support/fake_extras.hpp"

namespace tarn {
namespace {

class BatteryInfoTest : public ::testing::Test {
 protected:
  BatteryInfoTest() {
    extras_.onCall = [this](const std::string& operation) { calls_.push_back(operation); };
  }

  std::optional<BatteryInfo> read() { return BatteryInfo::read(extras_.port().power); }

  /// The battery of a machine with one power source.
  std::optional<BatteryInfo> readSource(const PropertyDictionary& source) {
    extras_.powerSources = {source};
    return read();
  }

  /// The percentage of an internal battery.
  std::int64_t percent(std::int64_t current, std::int64_t max) {
    return readSource(internalBattery(current, max)).value().percent;
  }

  /// The battery of a machine with a full battery and this controller.
  BatteryInfo readController(const PropertyDictionary& controller) {
    extras_.powerSources = {internalBattery(100, 100)};
    extras_.batteryController = controller;
    return read().value();
  }

  FakeExtras extras_;
  std::vector<std::string> calls_;
};

TEST_F(BatteryInfoTest, ReturnsNulloptWithoutPowerSourcesAndDoesNotReadTheController) {
  extras_.batteryController = PropertyDictionary{{"CycleCount", std::int64_t{5}}};
  EXPECT_EQ(read(), std::nullopt);
  EXPECT_EQ(calls_, std::vector<std::string>{"powerSources"});
}

TEST_F(BatteryInfoTest, ReturnsNulloptWithoutInternalBattery) {
  PropertyDictionary supply = internalBattery(80, 100);
  supply["Type"] = std::string("UPS");
  EXPECT_EQ(readSource(supply), std::nullopt);
  EXPECT_EQ(calls_, std::vector<std::string>{"powerSources"});
}

TEST_F(BatteryInfoTest, SkipsASourceWithoutType) {
  PropertyDictionary source = internalBattery(80, 100);
  source.erase("Type");
  EXPECT_EQ(readSource(source), std::nullopt);
  source["Type"] = std::int64_t{1};
  EXPECT_EQ(readSource(source), std::nullopt);
  EXPECT_EQ(readSource({}), std::nullopt);
}

TEST_F(BatteryInfoTest, SkipsABatteryWithoutIntegerCurrentCapacity) {
  PropertyDictionary source = internalBattery(80, 100);
  for (const PropertyValue& value :
       {PropertyValue(std::string("80")), PropertyValue(80.0), PropertyValue(true), PropertyValue()}) {
    source["Current Capacity"] = value;
    EXPECT_EQ(readSource(source), std::nullopt) << value.index();
  }
  source.erase("Current Capacity");
  EXPECT_EQ(readSource(source), std::nullopt);
}

TEST_F(BatteryInfoTest, SkipsABatteryWithMaxCapacityBelowOne) {
  EXPECT_EQ(readSource(internalBattery(80, 0)), std::nullopt);
  EXPECT_EQ(readSource(internalBattery(80, -100)), std::nullopt);
  EXPECT_EQ(percent(1, 1), 100);
  PropertyDictionary source = internalBattery(80, 100);
  source["Max Capacity"] = 100.0;
  EXPECT_EQ(readSource(source), std::nullopt);
  source.erase("Max Capacity");
  EXPECT_EQ(readSource(source), std::nullopt);
}

TEST_F(BatteryInfoTest, UsesTheFirstValidSource) {
  PropertyDictionary supply = internalBattery(10, 100);
  supply["Type"] = std::string("UPS");
  extras_.powerSources = {std::nullopt, supply, internalBattery(20, 0), internalBattery(30, 100),
                          internalBattery(40, 100)};
  EXPECT_EQ(read()->percent, 30);
}

TEST_F(BatteryInfoTest, UsesTheCurrentCapacityAsPercentWhenMaxIs100) {
  EXPECT_EQ(percent(87, 100), 87);
  EXPECT_EQ(percent(0, 100), 0);
  EXPECT_EQ(percent(-5, 100), -5);
}

TEST_F(BatteryInfoTest, RoundsHalvesAwayFromZero) {
  EXPECT_EQ(percent(4123, 4382), 94);
  EXPECT_EQ(percent(125, 1000), 13);
  EXPECT_EQ(percent(124, 1000), 12);
  EXPECT_EQ(percent(-125, 1000), -13);
}

TEST_F(BatteryInfoTest, ClampsTo100Percent) {
  EXPECT_EQ(percent(105, 100), 100);
  EXPECT_EQ(percent(4500, 4382), 100);
  EXPECT_EQ(percent(std::numeric_limits<std::int64_t>::max(), 1), 100);
}

TEST_F(BatteryInfoTest, AcceptsTheLowestCapacity) {
  EXPECT_EQ(percent(std::numeric_limits<std::int64_t>::min(), 1), std::numeric_limits<std::int64_t>::min());
}

TEST_F(BatteryInfoTest, IsChargingOnlyWhenTheSourceReportsTrue) {
  PropertyDictionary source = internalBattery(80, 100);
  EXPECT_FALSE(readSource(source)->isCharging);
  source["Is Charging"] = true;
  EXPECT_TRUE(readSource(source)->isCharging);
  source["Is Charging"] = false;
  EXPECT_FALSE(readSource(source)->isCharging);
  source["Is Charging"] = std::int64_t{1};
  EXPECT_FALSE(readSource(source)->isCharging);
}

TEST_F(BatteryInfoTest, HasOnlyChargeWithoutController) {
  EXPECT_EQ(readSource(internalBattery(64, 100)), (BatteryInfo{.percent = 64}));
  EXPECT_EQ(calls_, (std::vector<std::string>{"powerSources", "batteryController"}));
}

TEST_F(BatteryInfoTest, ReportsTheCycleCountOfTheController) {
  EXPECT_EQ(readController({{"CycleCount", std::int64_t{312}}}).cycleCount, 312);
  EXPECT_EQ(readController({{"CycleCount", std::int64_t{0}}}).cycleCount, 0);
  EXPECT_EQ(readController({{"CycleCount", std::string("312")}}).cycleCount, std::nullopt);
  EXPECT_EQ(readController({}).cycleCount, std::nullopt);
}

TEST_F(BatteryInfoTest, ReportsHealthInPercentOfTheDesignCapacity) {
  const auto health = [this](std::int64_t full, std::int64_t design) {
    return readController({{"AppleRawMaxCapacity", full}, {"DesignCapacity", design}}).healthPercent;
  };
  EXPECT_EQ(health(3950, 4382), 90);
  EXPECT_EQ(health(4500, 4382), 100);
  EXPECT_EQ(health(1, 1), 100);
  EXPECT_EQ(health(1, 1000), 0);
  EXPECT_EQ(health(0, 4382), std::nullopt);
  EXPECT_EQ(health(-1, 4382), std::nullopt);
  EXPECT_EQ(health(3950, 0), std::nullopt);
  EXPECT_EQ(health(3950, -1), std::nullopt);
}

TEST_F(BatteryInfoTest, UsesTheFirstFullCapacityThatIsAnInteger) {
  PropertyDictionary controller = {{"DesignCapacity", std::int64_t{1000}},
                                   {"AppleRawMaxCapacity", std::int64_t{910}},
                                   {"MaxCapacity", std::int64_t{820}},
                                   {"NominalChargeCapacity", std::int64_t{730}}};
  EXPECT_EQ(readController(controller).healthPercent, 91);
  controller["AppleRawMaxCapacity"] = 910.0;
  EXPECT_EQ(readController(controller).healthPercent, 82);
  controller.erase("AppleRawMaxCapacity");
  EXPECT_EQ(readController(controller).healthPercent, 82);
  controller.erase("MaxCapacity");
  EXPECT_EQ(readController(controller).healthPercent, 73);
  controller.erase("NominalChargeCapacity");
  EXPECT_EQ(readController(controller).healthPercent, std::nullopt);
}

TEST_F(BatteryInfoTest, DoesNotFallBackFromAFullCapacityOfZero) {
  EXPECT_EQ(readController({{"DesignCapacity", std::int64_t{1000}},
                            {"AppleRawMaxCapacity", std::int64_t{0}},
                            {"MaxCapacity", std::int64_t{820}}})
                .healthPercent,
            std::nullopt);
}

TEST_F(BatteryInfoTest, ReportsTheCycleCountWithoutDesignCapacity) {
  const BatteryInfo battery =
      readController({{"CycleCount", std::int64_t{7}}, {"MaxCapacity", std::int64_t{820}}});
  EXPECT_EQ(battery.cycleCount, 7);
  EXPECT_EQ(battery.healthPercent, std::nullopt);
}

}  // namespace
}  // namespace tarn
