// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "platform/linux/sysfs/machine_tree.hpp"
#include "platform/linux/sysfs/thermal_rules.hpp"
#include "platform/linux/sysfs/thermal_zones.hpp"

namespace tarn {
namespace {

using enum ThermalState;

TEST(ThermalRules, CountTenDegreesBelowTheSlowingDownAsWarm) {
  const TripPoints trips{.passive = 95, .critical = 120};
  EXPECT_EQ(stateOf(84.9, trips), nominal);
  EXPECT_EQ(stateOf(85, trips), fair);
  EXPECT_EQ(stateOf(94.9, trips), fair);
  EXPECT_EQ(stateOf(95, trips), serious);
  EXPECT_EQ(stateOf(114.9, trips), serious);
}

TEST(ThermalRules, CountFiveDegreesBelowTheEndAsOverheating) {
  const TripPoints trips{.passive = 95, .critical = 105};
  EXPECT_EQ(stateOf(99.9, trips), serious);
  EXPECT_EQ(stateOf(100, trips), critical);
  EXPECT_EQ(stateOf(119, trips), critical);
  EXPECT_EQ(stateOf(100, {.passive = std::nullopt, .critical = 105}), critical);
  EXPECT_EQ(stateOf(99, {.passive = std::nullopt, .critical = 105}), nominal);
}

TEST(ThermalRules, KnowNothingWithoutTripPoints) {
  EXPECT_EQ(stateOf(90, {}), unknown);
}

TEST(ThermalRules, PassOverTripPointsThatWereNeverSet) {
  for (const double celsius : {-274.0, -273.2, 0.0, 20.8, 30.0, 130.0, 255.0, 256.0}) {
    EXPECT_FALSE(isPlausibleTrip(celsius)) << celsius;
  }
  for (const double celsius : {30.1, 55.05, 128.0, 129.9}) EXPECT_TRUE(isPlausibleTrip(celsius)) << celsius;
}

TEST(ThermalRules, LetTheGraverStateCount) {
  EXPECT_EQ(graver(nominal, fair), fair);
  EXPECT_EQ(graver(critical, serious), critical);
  EXPECT_EQ(graver(unknown, nominal), nominal);
  EXPECT_EQ(graver(unknown, unknown), unknown);
}

class ThermalZonesTest : public ::testing::Test {
 protected:
  ThermalState state() {
    zones_.refresh();
    return zones_.state();
  }

  void setTemperature(const std::string& text) {
    tree_.write("sys/class/thermal/thermal_zone0/temp", text + '\n');
  }

  TemporaryTree tree_;
  ThermalZones zones_{tree_.roots().sys};
};

TEST_F(ThermalZonesTest, FollowTheirTemperature) {
  writeMachine(tree_, "rockpro64");
  EXPECT_EQ(state(), nominal);
  setTemperature("60000");
  EXPECT_EQ(state(), fair) << "ten below the lower of two passive trip points";
  setTemperature("70000");
  EXPECT_EQ(state(), serious);
  setTemperature("90000");
  EXPECT_EQ(state(), critical);
}

TEST_F(ThermalZonesTest, AreNotAlarmedByFans) {
  writeMachine(tree_, "odroid-xu4");
  for (const auto* zone : {"0", "1", "2", "3"}) {
    tree_.write(std::string("sys/class/thermal/thermal_zone") + zone + "/temp", "74000\n");
  }
  EXPECT_EQ(state(), nominal);
}

TEST_F(ThermalZonesTest, TakeTheLowerOfHotAndCritical) {
  writeMachine(tree_, "laptop-overheating");
  setTemperature("97900");
  EXPECT_EQ(state(), serious);
  setTemperature("98000");
  EXPECT_EQ(state(), critical) << "five below hot";
}

TEST_F(ThermalZonesTest, DoNotBelieveAnImplausibleTemperature) {
  writeMachine(tree_, "rockpro64");
  tree_.remove("sys/class/thermal/thermal_zone1");
  for (const auto* text : {"0", "-273200", "1000", "150000", "200000", "", "hot"}) {
    setTemperature(text);
    EXPECT_EQ(state(), unknown) << text;
  }
  setTemperature("149000");
  EXPECT_EQ(state(), critical);
}

TEST_F(ThermalZonesTest, GrowGraverAllTheWayToAHighCriticalTripPoint) {
  writeMachine(tree_, "laptop-energy");
  setTemperature("119000");
  EXPECT_EQ(state(), nominal);
  setTemperature("124000");
  EXPECT_EQ(state(), critical);
}

TEST_F(ThermalZonesTest, AreNotAlarmedByThresholdsThatProgramsSet) {
  writeMachine(tree_, "laptop-energy");
  tree_.write("sys/class/thermal/thermal_zone9/trip_point_0_temp", "48000\n");
  EXPECT_EQ(state(), nominal);
}

TEST_F(ThermalZonesTest, AreAskedAgainWhenTheyDidNotAnswerAtOnce) {
  writeMachine(tree_, "rockpro64");
  tree_.write("sys/class/thermal/thermal_zone0/type", "");
  zones_.refresh();
  EXPECT_EQ(zones_.all()[0].type, "");
  tree_.write("sys/class/thermal/thermal_zone0/type", "cpu-thermal\n");
  zones_.refresh();
  EXPECT_EQ(zones_.all()[0].type, "cpu-thermal");
}

TEST_F(ThermalZonesTest, ComeAndGo) {
  EXPECT_EQ(state(), unknown);
  writeMachine(tree_, "laptop-hot");
  EXPECT_EQ(state(), serious);
  tree_.remove("sys/class/thermal/thermal_zone0");
  EXPECT_EQ(state(), unknown);
}

}  // namespace
}  // namespace tarn
