// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include "platform/linux/sysfs/machine_tree.hpp"
#include "platform/linux/sysfs/thermal.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum ThermalState;

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

TEST_F(ThermalZonesTest, ReportsChangesOfTheTemperature) {
  writeMachine(tree_, "rockpro64");
  EXPECT_EQ(state(), nominal);
  setTemperature("60000");
  EXPECT_EQ(state(), fair) << "ten degrees below the lower of two passive trip points";
  setTemperature("70000");
  EXPECT_EQ(state(), serious);
  setTemperature("90000");
  EXPECT_EQ(state(), critical);
}

TEST_F(ThermalZonesTest, IgnoresActiveTripPoints) {
  writeMachine(tree_, "odroid-xu4");
  for (const auto* zone : {"0", "1", "2", "3"}) {
    tree_.write(std::string("sys/class/thermal/thermal_zone") + zone + "/temp", "74000\n");
  }
  EXPECT_EQ(state(), nominal);
}

TEST_F(ThermalZonesTest, UsesTheLowerOfHotAndCritical) {
  writeMachine(tree_, "laptop-overheating");
  setTemperature("97900");
  EXPECT_EQ(state(), serious);
  setTemperature("98000");
  EXPECT_EQ(state(), critical) << "five degrees below the trip point hot";
}

TEST_F(ThermalZonesTest, IgnoresImplausibleTemperatures) {
  writeMachine(tree_, "rockpro64");
  tree_.remove("sys/class/thermal/thermal_zone1");
  for (const auto* text : {"0", "-273200", "1000", "150000", "200000", "", "hot"}) {
    setTemperature(text);
    EXPECT_EQ(state(), unknown) << text;
  }
  setTemperature("149000");
  EXPECT_EQ(state(), critical);
}

TEST_F(ThermalZonesTest, AcceptsTemperaturesAbove120Degrees) {
  writeMachine(tree_, "laptop-energy");
  setTemperature("119000");
  EXPECT_EQ(state(), nominal);
  setTemperature("124000");
  EXPECT_EQ(state(), critical);
}

TEST_F(ThermalZonesTest, IgnoresNotificationTripPoints) {
  writeMachine(tree_, "laptop-energy");
  tree_.write("sys/class/thermal/thermal_zone9/trip_point_0_temp", "48000\n");
  EXPECT_EQ(state(), nominal);
}

TEST_F(ThermalZonesTest, ReadsAZoneAgainUntilItsTypeCanBeRead) {
  writeMachine(tree_, "rockpro64");
  tree_.write("sys/class/thermal/thermal_zone0/type", "");
  zones_.refresh();
  EXPECT_EQ(zones_.all()[0].type, "");
  tree_.write("sys/class/thermal/thermal_zone0/type", "cpu-thermal\n");
  zones_.refresh();
  EXPECT_EQ(zones_.all()[0].type, "cpu-thermal");
}

TEST_F(ThermalZonesTest, DetectsAddedAndRemovedZones) {
  EXPECT_EQ(state(), unknown);
  writeMachine(tree_, "laptop-hot");
  EXPECT_EQ(state(), serious);
  tree_.remove("sys/class/thermal/thermal_zone0");
  EXPECT_EQ(state(), unknown);
}

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

TEST_F(ProcessorSensorsTest, RecognizesProcessorSensorsByName) {
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

TEST_F(ProcessorSensorsTest, PrefersChipsThenProcessorZonesThenTheAcpiZone) {
  writeMachine(tree_, "laptop-firmware-zone-only");
  EXPECT_THAT(readings(), ElementsAre(58));
  tree_.write("sys/class/thermal/thermal_zone1/type", "cpu-thermal\n");
  tree_.write("sys/class/thermal/thermal_zone1/temp", "61000\n");
  EXPECT_THAT(readings(), ElementsAre(61));
  tree_.write("sys/class/hwmon/hwmon1/name", "k10temp\n");
  tree_.write("sys/class/hwmon/hwmon1/temp1_input", "64000\n");
  EXPECT_THAT(readings(), ElementsAre(64));
}

TEST_F(ProcessorSensorsTest, ReadsTemperaturesAtEachCall) {
  writeMachine(tree_, "laptop-charging");
  EXPECT_THAT(readings(), ElementsAre(51.125));
  tree_.write("sys/class/hwmon/hwmon2/temp1_input", "60000\n");
  EXPECT_THAT(readings(), ElementsAre(60));
}

TEST_F(ProcessorSensorsTest, OmitsOnlyTheInputThatCannotBeRead) {
  writeMachine(tree_, "laptop-low");
  tree_.write("sys/class/hwmon/hwmon0/temp2_input", "");
  EXPECT_THAT(readings(), ElementsAre(39, 37));
}

TEST_F(ProcessorSensorsTest, OmitsTctlWhenThereIsTdie) {
  writeMachine(tree_, "desktop-zenpower");
  EXPECT_THAT(readings(), ElementsAre(50, 44));
}

TEST_F(ProcessorSensorsTest, SearchesAgainUntilAChipIsComplete) {
  tree_.write("sys/class/hwmon/hwmon0/name", "");
  EXPECT_THAT(readings(), IsEmpty());
  tree_.write("sys/class/hwmon/hwmon0/name", "coretemp\n");
  EXPECT_THAT(readings(), IsEmpty());
  tree_.write("sys/class/hwmon/hwmon0/temp1_input", "40000\n");
  EXPECT_THAT(readings(), ElementsAre(40));
}

TEST_F(ProcessorSensorsTest, DetectsAddedAndRemovedChips) {
  EXPECT_THAT(readings(), IsEmpty());
  writeMachine(tree_, "laptop-low");
  EXPECT_THAT(readings(), ElementsAre(39, 38, 37));
  tree_.remove("sys/class/hwmon/hwmon0");
  EXPECT_THAT(readings(), IsEmpty());
}

}  // namespace
}  // namespace tarn
