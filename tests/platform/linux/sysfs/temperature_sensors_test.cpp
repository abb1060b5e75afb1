// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/temperature_sensors.hpp"

#include <gmock/gmock.h>

#include "platform/linux/sysfs/machine_tree.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ProcessorSensorsTest : public ::testing::Test {
 protected:
  std::vector<double> readings() {
    zones_.refresh();
    return sensors_.readings(zones_);
  }

  TemporaryTree tree_;
  ThermalZones zones_{tree_.roots().sys};
  ProcessorSensors sensors_{tree_.roots().sys};
};

TEST_F(ProcessorSensorsTest, AreTheProcessorsOwn) {
  for (const auto* name : {"coretemp",
                           "k8temp",
                           "k10temp",
                           "zenpower",
                           "via_cputemp",
                           "cpu_thermal",
                           "cpu-thermal",
                           "cpu0-thermal",
                           "CPU-therm",
                           "x86_pkg_temp",
                           "TCPU",
                           "B0D4",
                           "soc_thermal",
                           "soc-thermal",
                           "soc_dts0",
                           "soc_dts1",
                           "TCPU_PCI",
                           "cluster0-thermal",
                           "imx_thermal_zone",
                           "bigcore0-thermal",
                           "littlecore-thermal"}) {
    EXPECT_TRUE(isProcessorSensor(name)) << name;
  }
  for (const auto* name : {"acpitz", "nct6797", "it8728", "nvme", "iwlwifi_1", "amdgpu", "gpu-thermal",
                           "drivetemp", "BAT0", "pch_cannonlake", "INT3400 Thermal", "TSKN", ""}) {
    EXPECT_FALSE(isProcessorSensor(name)) << name;
  }
}

TEST_F(ProcessorSensorsTest, ComeBeforeZones) {
  writeMachine(tree_, "laptop-firmware-zone-only");
  EXPECT_THAT(readings(), ElementsAre(58));
  tree_.write("sys/class/thermal/thermal_zone1/type", "cpu-thermal\n");
  tree_.write("sys/class/thermal/thermal_zone1/temp", "61000\n");
  EXPECT_THAT(readings(), ElementsAre(61));
  tree_.write("sys/class/hwmon/hwmon1/name", "k10temp\n");
  tree_.write("sys/class/hwmon/hwmon1/temp1_input", "64000\n");
  EXPECT_THAT(readings(), ElementsAre(64));
}

TEST_F(ProcessorSensorsTest, AreReadAfreshEachTime) {
  writeMachine(tree_, "laptop-charging");
  EXPECT_THAT(readings(), ElementsAre(51.125));
  tree_.write("sys/class/hwmon/hwmon2/temp1_input", "60000\n");
  EXPECT_THAT(readings(), ElementsAre(60));
}

TEST_F(ProcessorSensorsTest, LeaveOutOnlyTheOneThatDoesNotAnswer) {
  writeMachine(tree_, "laptop-low");
  tree_.write("sys/class/hwmon/hwmon0/temp2_input", "");
  EXPECT_THAT(readings(), ElementsAre(39, 37));
}

TEST_F(ProcessorSensorsTest, LeaveOutTheControlValueWhereTheDieTellsItsOwn) {
  writeMachine(tree_, "desktop-zenpower");
  EXPECT_THAT(readings(), ElementsAre(50, 44));
}

TEST_F(ProcessorSensorsTest, AreLookedForAgainUntilTheirChipIsComplete) {
  tree_.write("sys/class/hwmon/hwmon0/name", "");
  EXPECT_THAT(readings(), IsEmpty());
  tree_.write("sys/class/hwmon/hwmon0/name", "coretemp\n");
  EXPECT_THAT(readings(), IsEmpty());
  tree_.write("sys/class/hwmon/hwmon0/temp1_input", "40000\n");
  EXPECT_THAT(readings(), ElementsAre(40));
}

TEST_F(ProcessorSensorsTest, ComeAndGo) {
  EXPECT_THAT(readings(), IsEmpty());
  writeMachine(tree_, "laptop-low");
  EXPECT_THAT(readings(), ElementsAre(39, 38, 37));
  tree_.remove("sys/class/hwmon/hwmon0");
  EXPECT_THAT(readings(), IsEmpty());
}

}  // namespace
}  // namespace tarn
