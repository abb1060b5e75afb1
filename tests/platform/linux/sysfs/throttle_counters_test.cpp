// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "platform/linux/sysfs/linux_extras_port.hpp"
#include "platform/linux/sysfs/thermal_state.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

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

  /// A look three seconds after the last one.
  std::optional<bool> haveRisen() {
    now_ += std::chrono::seconds(3);
    return counters_.haveRisen(now_);
  }

  TemporaryTree tree_;
  ThrottleCounters::Time now_;
  ThrottleCounters counters_{tree_.roots().sys};
};

TEST_F(ThrottleCountersTest, AreUnknownWhereNothingCounts) {
  EXPECT_EQ(haveRisen(), std::nullopt);
  tree_.write("sys/devices/system/cpu/cpufreq/thermal_throttle/core_throttle_count", "1\n");
  tree_.write("sys/devices/system/cpu/online", "0-3\n");
  EXPECT_EQ(ThrottleCounters(tree_.roots().sys).haveRisen(now_), std::nullopt);
}

TEST_F(ThrottleCountersTest, HaveRisenSinceTheLastLookOnly) {
  set(0, "core_throttle_count", 5);
  EXPECT_EQ(haveRisen(), false) << "since when is not known";
  EXPECT_EQ(haveRisen(), false);
  set(0, "core_throttle_count", 6);
  EXPECT_EQ(haveRisen(), true);
  EXPECT_EQ(haveRisen(), false);
}

TEST_F(ThrottleCountersTest, CountForEachPackageOnce) {
  for (int processor = 0; processor < 4; ++processor) {
    set(processor, "core_throttle_count", 0);
    set(processor, "package_throttle_count", 0);
    setPackage(processor, processor / 2);
  }
  EXPECT_EQ(haveRisen(), false);
  set(1, "package_throttle_count", 1);
  set(1, "core_throttle_count", 1);
  EXPECT_EQ(haveRisen(), false) << "the first processor of a package speaks for it";
  set(2, "package_throttle_count", 1);
  EXPECT_EQ(haveRisen(), true);
}

TEST_F(ThrottleCountersTest, CountForEachCoreWherePackagesDoNotCount) {
  set(0, "core_throttle_count", 0);
  set(1, "core_throttle_count", 0);
  EXPECT_EQ(haveRisen(), false);
  set(1, "core_throttle_count", 1);
  EXPECT_EQ(haveRisen(), true);
}

TEST_F(ThrottleCountersTest, ThatVanishOrStartAnewHaveNotRisen) {
  set(0, "core_throttle_count", 9);
  set(1, "core_throttle_count", 9);
  EXPECT_EQ(haveRisen(), false);
  set(0, "core_throttle_count", 0);
  tree_.remove(directoryOf(1));
  EXPECT_EQ(haveRisen(), false);
  tree_.remove(directoryOf(0));
  EXPECT_EQ(haveRisen(), std::nullopt);
}

TEST_F(ThrottleCountersTest, SayNothingOfWhatMayBeLongOver) {
  set(0, "core_throttle_count", 5);
  EXPECT_EQ(haveRisen(), false);
  set(0, "core_throttle_count", 6);
  now_ += std::chrono::minutes(10);
  EXPECT_EQ(haveRisen(), false);
  set(0, "core_throttle_count", 7);
  EXPECT_EQ(haveRisen(), true);
}

TEST_F(ThrottleCountersTest, AreLookedForAgainWhenAProcessorIsSwitchedOff) {
  for (int processor = 0; processor < 2; ++processor) {
    set(processor, "package_throttle_count", 0);
    setPackage(processor, 0);
  }
  EXPECT_EQ(haveRisen(), false);
  tree_.remove(directoryOf(0));
  EXPECT_EQ(haveRisen(), std::nullopt);
  EXPECT_EQ(haveRisen(), false);
  set(1, "package_throttle_count", 1);
  EXPECT_EQ(haveRisen(), true);
}

TEST_F(ThrottleCountersTest, MakeTheMachineHotUntilTheNextLook) {
  set(0, "core_throttle_count", 1);
  const ExtrasPort port = linuxExtrasPort(tree_.roots());
  EXPECT_EQ(port.thermalState(), ThermalState::nominal);
  set(0, "core_throttle_count", 2);
  EXPECT_EQ(port.thermalState(), ThermalState::serious);
  EXPECT_EQ(port.thermalState(), ThermalState::nominal);
}

}  // namespace
}  // namespace tarn
