// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/linux_extras_port.hpp"

#include <chrono>
#include <memory>

#include "platform/linux/procfs/kernel_clocks.hpp"
#include "platform/linux/sysfs/power_supplies.hpp"
#include "platform/linux/sysfs/root_volume.hpp"
#include "platform/linux/sysfs/temperature_sensors.hpp"
#include "platform/linux/sysfs/thermal_state.hpp"
#include "platform/linux/sysfs/thermal_zones.hpp"

namespace tarn {

namespace {

/// One machine's hardware, shared by the operations of its port.
struct Hardware {
  explicit Hardware(const LinuxRoots& roots)
      : volume(roots), supplies(roots.sys), sensors(roots.sys), zones(roots.sys), throttling(roots.sys) {}

  std::vector<double> temperatures() {
    zones.refresh();
    return sensors.readings(zones);
  }

  /// By the zones as of the last look at the temperatures.
  ThermalState thermalState() {
    const ThermalState state = zones.state();
    const auto risen = throttling.haveRisen(std::chrono::steady_clock::now());
    if (!risen) return state;
    return graver(state, *risen ? ThermalState::serious : ThermalState::nominal);
  }

  RootVolume volume;
  PowerSupplies supplies;
  ProcessorSensors sensors;
  ThermalZones zones;
  ThrottleCounters throttling;
};

}  // namespace

ExtrasPort linuxExtrasPort(const LinuxRoots& roots) {
  const auto hardware = std::make_shared<Hardware>(roots);
  return {.rootVolume = [hardware] { return hardware->volume.values(); },
          .power = {.powerSources = [hardware] { return hardware->supplies.sources(); },
                    .batteryController = [hardware] { return hardware->supplies.controller(); }},
          .temperatures = [hardware] { return hardware->temperatures(); },
          .uptime = uptimeSeconds,
          .thermalState = [hardware] { return hardware->thermalState(); }};
}

}  // namespace tarn
