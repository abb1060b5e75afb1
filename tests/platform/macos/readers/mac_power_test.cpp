// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include "extras/battery.hpp"
#include "platform/macos/readers/fake_objects.hpp"
#include "platform/macos/readers/mac_extras.hpp"

namespace tarn::macos {
namespace {

using testing::ElementsAre;

const FakeObject internalBattery{std::string("InternalBattery")};
const FakeObject upsType{std::string("UPS")};
const FakeObject trueValue{true};
const FakeObject number64{std::int64_t{64}};
const FakeObject number100{std::int64_t{100}};
const FakeObject number312{std::int64_t{312}};
const FakeObject number4382{std::int64_t{4382}};
const FakeObject number3950{std::int64_t{3950}};
const FakeObject fraction{64.5};
const FakeObject data{};
const FakeObject battery{FakeObject::Dictionary{{"Type", &internalBattery},
                                                {"Current Capacity", &number64},
                                                {"Max Capacity", &number100},
                                                {"Is Charging", &trueValue},
                                                {"Name", &data}}};
const FakeObject otherSource{FakeObject::Dictionary{
    {"Type", &upsType}, {"Current Capacity", &number100}, {"Max Capacity", &number100}}};

/// A fake of IOKit. Each source is its own description.
struct FakeSupply {
  bool hasInfo = true;
  bool hasList = true;
  FakeObject list{FakeObject::Array{}};
  bool hasController = true;
  std::int32_t status = 0;
  bool givesProperties = true;
  FakeObject properties{FakeObject::Dictionary{}};
  std::vector<std::string> calls;
};

FakeFrameworks* frameworks = nullptr;
FakeSupply* supply = nullptr;

const PowerFunctions power = {
    .copyPowerSourcesInfo = []() -> ObjectRef {
      return supply->hasInfo ? frameworks->ownedCopy({}) : nullptr;
    },
    .copyPowerSourcesList = [](ObjectRef) -> ObjectRef {
      return supply->hasList ? frameworks->ownedCopy(supply->list) : nullptr;
    },
    .powerSourceDescription = [](ObjectRef, ObjectRef source) { return source == &data ? nullptr : source; },
    .matchingService =
        [](const char* className) {
          supply->calls.push_back(std::string("match ") + className);
          return supply->hasController ? RegistryEntry{7} : RegistryEntry{0};
        },
    .createProperties =
        [](RegistryEntry service, ObjectRef* properties) {
          supply->calls.push_back("properties " + std::to_string(service));
          if (supply->givesProperties) *properties = frameworks->ownedCopy(supply->properties);
          return supply->status;
        },
    .releaseService =
        [](RegistryEntry service) { supply->calls.push_back("release " + std::to_string(service)); },
};

class MacPowerTest : public ::testing::Test {
 protected:
  MacPowerTest() {
    frameworks = &frameworks_;
    supply = &supply_;
    supply_.list.value = FakeObject::Array{&battery};
    supply_.properties.value = FakeObject::Dictionary{
        {"CycleCount", &number312}, {"DesignCapacity", &number4382}, {"AppleRawMaxCapacity", &number3950}};
  }

  ~MacPowerTest() override { EXPECT_EQ(frameworks_.created, frameworks_.released); }

  static std::optional<BatteryInfo> read() {
    return BatteryInfo::read(macPowerPort(power, FakeFrameworks::functions()));
  }

  FakeFrameworks frameworks_;
  FakeSupply supply_;
};

TEST_F(MacPowerTest, ReadsTheBatteryAndItsController) {
  EXPECT_EQ(read(), (BatteryInfo{.percent = 64, .isCharging = true, .cycleCount = 312, .healthPercent = 90}));
  EXPECT_THAT(supply_.calls, ElementsAre("match AppleSmartBattery", "properties 7", "release 7"));
  EXPECT_EQ(frameworks_.created, 3);
}

TEST_F(MacPowerTest, ReportsNoBatteryWithoutSources) {
  supply_.list.value = FakeObject::Array{};
  EXPECT_EQ(read(), std::nullopt);
  supply_.list.value = std::string("no array");
  EXPECT_EQ(read(), std::nullopt);
  supply_.hasList = false;
  EXPECT_EQ(read(), std::nullopt);
  supply_.hasInfo = false;
  EXPECT_EQ(read(), std::nullopt);
  EXPECT_THAT(supply_.calls, ElementsAre()) << "the controller is not read";
}

TEST_F(MacPowerTest, SkipsSourcesWithoutADescription) {
  static const FakeObject text{std::string("no dictionary")};
  static const FakeObject emptyDictionary{FakeObject::Dictionary{}};
  supply_.list.value = FakeObject::Array{&data, &text, &emptyDictionary, &otherSource, &battery};
  EXPECT_EQ(read()->percent, 64);
}

TEST_F(MacPowerTest, SkipsABatteryWhoseCapacityIsNotAnInteger) {
  static const FakeObject realCapacity{FakeObject::Dictionary{
      {"Type", &internalBattery}, {"Current Capacity", &fraction}, {"Max Capacity", &number100}}};
  static const FakeObject dataCapacity{FakeObject::Dictionary{
      {"Type", &internalBattery}, {"Current Capacity", &data}, {"Max Capacity", &number100}}};
  supply_.list.value = FakeObject::Array{&realCapacity, &dataCapacity};
  EXPECT_EQ(read(), std::nullopt);
}

TEST_F(MacPowerTest, ReportsNoCyclesAndNoHealthWithoutAController) {
  supply_.hasController = false;
  EXPECT_EQ(read(), (BatteryInfo{.percent = 64, .isCharging = true}));
  EXPECT_THAT(supply_.calls, ElementsAre("match AppleSmartBattery"));
}

TEST_F(MacPowerTest, ReleasesTheControllerWhenReadingItFails) {
  const BatteryInfo chargeOnly{.percent = 64, .isCharging = true};
  supply_.status = 5;
  EXPECT_EQ(read(), chargeOnly) << "even if there are properties";
  supply_.givesProperties = false;
  EXPECT_EQ(read(), chargeOnly);
  supply_.status = 0;
  EXPECT_EQ(read(), chargeOnly);
  supply_.givesProperties = true;
  supply_.properties.value = FakeObject::Array{};
  EXPECT_EQ(read(), chargeOnly);
  EXPECT_EQ(std::count(supply_.calls.begin(), supply_.calls.end(), "release 7"), 4);
}

}  // namespace
}  // namespace tarn::macos
