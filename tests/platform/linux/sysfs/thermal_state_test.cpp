// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "platform/linux/sysfs/linux_extras_port.hpp"
#include "platform/linux/sysfs/thermal.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using enum ThermalState;

TEST(ThermalRules, IsFairFromTenDegreesBelowPassive) {
  const TripPoints trips{.passive = 95, .critical = 120};
  EXPECT_EQ(stateOf(84.9, trips), nominal);
  EXPECT_EQ(stateOf(85, trips), fair);
  EXPECT_EQ(stateOf(94.9, trips), fair);
  EXPECT_EQ(stateOf(95, trips), serious);
  EXPECT_EQ(stateOf(114.9, trips), serious);
}

TEST(ThermalRules, IsCriticalFromFiveDegreesBelowCritical) {
  const TripPoints trips{.passive = 95, .critical = 105};
  EXPECT_EQ(stateOf(99.9, trips), serious);
  EXPECT_EQ(stateOf(100, trips), critical);
  EXPECT_EQ(stateOf(119, trips), critical);
  EXPECT_EQ(stateOf(100, {.passive = std::nullopt, .critical = 105}), critical);
  EXPECT_EQ(stateOf(99, {.passive = std::nullopt, .critical = 105}), nominal);
}

TEST(ThermalRules, IsUnknownWithoutTripPoints) {
  EXPECT_EQ(stateOf(90, {}), unknown);
}

TEST(ThermalRules, RejectsUnsetTripPoints) {
  for (const double celsius : {-274.0, -273.2, 0.0, 20.8, 30.0, 130.0, 255.0, 256.0}) {
    EXPECT_FALSE(isPlausibleTrip(celsius)) << celsius;
  }
  for (const double celsius : {30.1, 55.05, 128.0, 129.9}) EXPECT_TRUE(isPlausibleTrip(celsius)) << celsius;
}

TEST(ThermalRules, ReturnsTheHigherSeverity) {
  EXPECT_EQ(higherSeverity(nominal, fair), fair);
  EXPECT_EQ(higherSeverity(critical, serious), critical);
  EXPECT_EQ(higherSeverity(unknown, nominal), nominal);
  EXPECT_EQ(higherSeverity(unknown, unknown), unknown);
}

class ThrottleCountersTest : public ::testing::Test {
 protected:
  void set(int processor, const std::string& counter, int count) {
    tree_.write(directoryOf(processor) + "/thermal_throttle/" + counter, std::to_string(count) + '\n');
  }

  void setPackage(int processor, int package) {
    tree_.write(directoryOf(processor) + "/topology/physical_package_id", std::to_string(package) + '\n');
  }

  static std::string directoryOf(int processor) {
    return "sys/devices/system/cpu/cpu" + std::to_string(processor);
  }

  /// Calls haveIncreased three seconds after the previous call.
  std::optional<bool> haveIncreased() {
    now_ += std::chrono::seconds(3);
    return counters_.haveIncreased(now_);
  }

  TemporaryTree tree_;
  ThrottleCounters::Time now_;
  ThrottleCounters counters_{tree_.roots().sys};
};

TEST_F(ThrottleCountersTest, ReturnsNulloptWithoutCounters) {
  EXPECT_EQ(haveIncreased(), std::nullopt);
  tree_.write("sys/devices/system/cpu/cpufreq/thermal_throttle/core_throttle_count", "1\n");
  tree_.write("sys/devices/system/cpu/online", "0-3\n");
  EXPECT_EQ(ThrottleCounters(tree_.roots().sys).haveIncreased(now_), std::nullopt);
}

TEST_F(ThrottleCountersTest, ReportsAnIncreaseOnce) {
  set(0, "core_throttle_count", 5);
  EXPECT_EQ(haveIncreased(), false) << "the first call has no previous counts";
  EXPECT_EQ(haveIncreased(), false);
  set(0, "core_throttle_count", 6);
  EXPECT_EQ(haveIncreased(), true);
  EXPECT_EQ(haveIncreased(), false);
}

TEST_F(ThrottleCountersTest, UsesOneCounterPerPackage) {
  for (int processor = 0; processor < 4; ++processor) {
    set(processor, "core_throttle_count", 0);
    set(processor, "package_throttle_count", 0);
    setPackage(processor, processor / 2);
  }
  EXPECT_EQ(haveIncreased(), false);
  set(1, "package_throttle_count", 1);
  set(1, "core_throttle_count", 1);
  EXPECT_EQ(haveIncreased(), false) << "only the first processor of a package is read";
  set(2, "package_throttle_count", 1);
  EXPECT_EQ(haveIncreased(), true);
}

TEST_F(ThrottleCountersTest, UsesCoreCountersWithoutPackageCounters) {
  set(0, "core_throttle_count", 0);
  set(1, "core_throttle_count", 0);
  EXPECT_EQ(haveIncreased(), false);
  set(1, "core_throttle_count", 1);
  EXPECT_EQ(haveIncreased(), true);
}

TEST_F(ThrottleCountersTest, IgnoresRemovedAndResetCounters) {
  set(0, "core_throttle_count", 9);
  set(1, "core_throttle_count", 9);
  EXPECT_EQ(haveIncreased(), false);
  set(0, "core_throttle_count", 0);
  tree_.remove(directoryOf(1));
  EXPECT_EQ(haveIncreased(), false);
  tree_.remove(directoryOf(0));
  EXPECT_EQ(haveIncreased(), std::nullopt);
}

TEST_F(ThrottleCountersTest, IgnoresAnIncreaseOverALongInterval) {
  set(0, "core_throttle_count", 5);
  EXPECT_EQ(haveIncreased(), false);
  set(0, "core_throttle_count", 6);
  now_ += std::chrono::minutes(10);
  EXPECT_EQ(haveIncreased(), false);
  set(0, "core_throttle_count", 7);
  EXPECT_EQ(haveIncreased(), true);
}

TEST_F(ThrottleCountersTest, SearchesAgainWhenAProcessorGoesOffline) {
  for (int processor = 0; processor < 2; ++processor) {
    set(processor, "package_throttle_count", 0);
    setPackage(processor, 0);
  }
  EXPECT_EQ(haveIncreased(), false);
  tree_.remove(directoryOf(0));
  EXPECT_EQ(haveIncreased(), std::nullopt);
  EXPECT_EQ(haveIncreased(), false);
  set(1, "package_throttle_count", 1);
  EXPECT_EQ(haveIncreased(), true);
}

TEST_F(ThrottleCountersTest, RaisesTheThermalStateUntilTheNextCall) {
  set(0, "core_throttle_count", 1);
  const ExtrasPort port = linuxExtrasPort(tree_.roots());
  EXPECT_EQ(port.thermalState(), ThermalState::nominal);
  set(0, "core_throttle_count", 2);
  EXPECT_EQ(port.thermalState(), ThermalState::serious);
  EXPECT_EQ(port.thermalState(), ThermalState::nominal);
}

}  // namespace
}  // namespace tarn
