// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Reads described machines: the files in /sys are the input, the values that the UI shows are the result.

#include "platform/linux/sysfs/linux_extras_port.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <ostream>
#include <set>

#include "extras/extras_reader.hpp"
#include "platform/linux/sysfs/machine_tree.hpp"

namespace tarn {
namespace {

using Battery = BatteryInfo;
using enum ThermalState;

constexpr auto none = std::nullopt;
constexpr bool charging = true;
constexpr bool notCharging = false;

struct Machine {
  std::string name;
  std::optional<Battery> battery;
  std::optional<double> celsius;
  ThermalState thermalState = unknown;
};

// Battery: percent, charging, cycles, health; mean temperature; thermal state.
const std::vector<Machine> machines = {
    {"laptop-energy", Battery{64, notCharging, 312, 91}, (48 + 46 + 48 + 45 + 47) / 5.0, nominal},
    {"laptop-charging", Battery{40, charging, 87, 95}, 51.125, nominal},
    {"laptop-low", Battery{12, notCharging, 641, 78}, 38, unknown},
    {"laptop-two-packs", Battery{50, charging, 471, 74}, (52 + 50 + 52) / 3.0, unknown},
    {"laptop-dead-second-pack", Battery{80, notCharging, 388, 20}, none, unknown},
    {"laptop-silent-second-pack", Battery{50, notCharging, 388, 82}, none, unknown},
    {"laptop-empty-bay", Battery{80, notCharging, 12, 100}, none, unknown},
    {"laptop-above-full", Battery{100, notCharging, 5, 100}, none, unknown},
    {"laptop-uncounted-cycles", Battery{75, notCharging, none, 91}, none, unknown},
    {"laptop-negative-cycles", Battery{50, notCharging, none, none}, none, unknown},
    {"laptop-mixed-units", Battery{50, notCharging, none, 75}, none, unknown},
    {"laptop-mouse", Battery{90, notCharging, 31, 98}, none, unknown},
    {"laptop-firmware-zone-only", Battery{85, notCharging, none, 28}, 58, nominal},
    {"laptop-warm", none, 87, fair},
    {"laptop-hot", Battery{100, notCharging, 140, 95}, none, serious},
    {"laptop-overheating", none, (101 + 100 + 101) / 3.0, critical},
    {"laptop-broken-sensors", Battery{44, charging, none, 90}, 56, unknown},
    {"laptop-eight-sensors", Battery{65, charging, 226, 92}, (58 + 55 + 56 + 58 + 54 + 55 + 57 + 54) / 8.0,
     nominal},
    {"tablet-percent-only", Battery{71, notCharging, none, none}, none, unknown},
    {"steam-deck", Battery{88, notCharging, 57, 97}, 51, nominal},
    {"desktop", none, (44.125 + 41.75 + 40.5) / 3, unknown},
    {"desktop-mouse-and-ups", none, (36 + 35 + 34 + 36 + 33) / 5.0, unknown},
    {"desktop-mainboard-sensors-only", none, none, unknown},
    {"desktop-zenpower", none, (50 + 44) / 2.0, unknown},
    {"desktop-k8", none, 42, unknown},
    {"desktop-absurd-firmware", none, 27.8, unknown},
    {"server-many-cores", none, (48 + 16 * 43.75 + 50 + 16 * 45.75) / 34, nominal},
    {"virtual-machine", none, none, unknown},
    {"raspberry-pi-4", none, 48.686, nominal},
    {"rockpro64", none, 53.333, nominal},
    {"odroid-xu4", none, (69 + 75 + 72 + 70) / 4.0, fair},
};

std::ostream& operator<<(std::ostream& stream, const Machine& machine) {
  return stream << machine.name;
}

class MachineTest : public ::testing::TestWithParam<Machine> {
 protected:
  MachineTest() { writeMachine(tree_, GetParam().name); }

  TemporaryTree tree_;
};

TEST_P(MachineTest, ReportsTheExpectedExtras) {
  const ExtrasReader reader(linuxExtrasPort(tree_.roots()));
  const SystemExtras extras = reader.read();
  EXPECT_EQ(extras.battery, GetParam().battery);
  EXPECT_EQ(extras.temperatureCelsius.has_value(), GetParam().celsius.has_value());
  EXPECT_NEAR(extras.temperatureCelsius.value_or(0), GetParam().celsius.value_or(0), 1e-9);
  EXPECT_EQ(reader.thermalState(), GetParam().thermalState);
  EXPECT_TRUE(extras.storage);
  EXPECT_GT(extras.uptime, 0);
}

TEST_P(MachineTest, ReportsTheSameAtTheSecondReading) {
  const ExtrasReader reader(linuxExtrasPort(tree_.roots()));
  const SystemExtras first = reader.read();
  const ThermalState firstState = reader.thermalState();
  const SystemExtras second = reader.read();
  EXPECT_EQ(second.battery, first.battery);
  EXPECT_EQ(second.temperatureCelsius, first.temperatureCelsius);
  EXPECT_EQ(reader.thermalState(), firstState);
}

std::string testName(const testing::TestParamInfo<Machine>& info) {
  std::string name = info.param.name;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, MachineTest, testing::ValuesIn(machines), testName);

TEST(Machines, HaveOneRowPerFixture) {
  std::set<std::string> described;
  for (const auto& entry : std::filesystem::directory_iterator(TARN_FIXTURES "/linux/machines")) {
    if (entry.path().extension() == ".machine") described.insert(entry.path().stem().string());
  }
  std::set<std::string> listed;
  for (const Machine& machine : machines) listed.insert(machine.name);
  EXPECT_EQ(listed, described);
}

}  // namespace
}  // namespace tarn
