// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <array>
#include <cmath>

#include "extras/extras_reader.hpp"
#include "fuzz/fuzz_target.hpp"
#include "platform/linux/sysfs/linux_extras_port.hpp"
#include "support/temporary_tree.hpp"

namespace {

constexpr std::array files{"power_supply/BAT0/type",
                           "power_supply/BAT0/scope",
                           "power_supply/BAT0/present",
                           "power_supply/BAT0/status",
                           "power_supply/BAT0/capacity",
                           "power_supply/BAT0/cycle_count",
                           "power_supply/BAT0/energy_now",
                           "power_supply/BAT0/energy_full",
                           "power_supply/BAT0/energy_full_design",
                           "power_supply/BAT0/charge_now",
                           "power_supply/BAT0/charge_full",
                           "power_supply/BAT0/charge_full_design",
                           "power_supply/BAT1/type",
                           "power_supply/BAT1/energy_now",
                           "power_supply/BAT1/energy_full",
                           "power_supply/BAT1/energy_full_design",
                           "hwmon/hwmon0/name",
                           "hwmon/hwmon0/temp1_input",
                           "hwmon/hwmon0/temp1_label",
                           "hwmon/hwmon0/temp2_input",
                           "hwmon/hwmon0/temp2_label",
                           "thermal/thermal_zone0/type",
                           "thermal/thermal_zone0/temp",
                           "thermal/thermal_zone0/trip_point_0_type",
                           "thermal/thermal_zone0/trip_point_0_temp",
                           "thermal/thermal_zone0/trip_point_1_type",
                           "thermal/thermal_zone0/trip_point_1_temp"};

}  // namespace

// Each line of the input is the content of one file in /sys/class. A line "-" stands for a missing file.
FUZZ_TARGET(hardware, text) {
  static const tarn::TemporaryTree tree;
  std::string_view rest = text;
  for (const std::string file : files) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    tree.remove("sys/class/" + file);
    if (line != "-") tree.write("sys/class/" + file, line);
  }
  const tarn::ExtrasReader reader(tarn::linuxExtrasPort(tree.roots()));
  for (int reading = 0; reading < 2; ++reading) {
    const tarn::SystemExtras extras = reader.read();
    if (extras.temperatureCelsius)
      tarn::require(*extras.temperatureCelsius > 1 && *extras.temperatureCelsius < 120);
    reader.thermalState();
  }
}
