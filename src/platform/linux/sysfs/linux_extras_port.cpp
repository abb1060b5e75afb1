// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/linux_extras_port.hpp"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/kernel_clocks.hpp"
#include "platform/linux/procfs/text_scan.hpp"
#include "platform/linux/sysfs/power_supplies.hpp"
#include "platform/linux/sysfs/root_volume.hpp"
#include "platform/linux/sysfs/thermal.hpp"

namespace tarn {

namespace {

/// The readers that the functions of one port share.
struct Readers {
  explicit Readers(const LinuxRoots& roots)
      : volume(roots),
        supplies(roots.sys),
        sensors(roots.sys),
        zones(roots.sys),
        throttleCounters(roots.sys) {}

  std::vector<double> temperatures() {
    zones.refresh();
    return sensors.readings(zones);
  }

  /// Uses the list of zones from the last call of `temperatures`.
  ThermalState thermalState() {
    const ThermalState state = zones.state();
    const auto isThrottled = throttleCounters.haveIncreased(std::chrono::steady_clock::now());
    if (!isThrottled) return state;
    return higherSeverity(state, *isThrottled ? ThermalState::serious : ThermalState::nominal);
  }

  RootVolume volume;
  PowerSupplies supplies;
  ProcessorSensors sensors;
  ThermalZones zones;
  ThrottleCounters throttleCounters;
};

}  // namespace

ExtrasPort linuxExtrasPort(const LinuxRoots& roots) {
  const auto readers = std::make_shared<Readers>(roots);
  return {.rootVolume = [readers] { return readers->volume.values(); },
          .power = {.powerSources = [readers] { return readers->supplies.sources(); },
                    .batteryController = [readers] { return readers->supplies.controller(); }},
          .temperatures = [readers] { return readers->temperatures(); },
          .uptime = uptimeSeconds,
          .thermalState = [readers] { return readers->thermalState(); }};
}

int countCoresOnline(const LinuxRoots& roots) {
  if (const auto count = countCpuList(readFile(roots.sys + "/devices/system/cpu/online"))) return *count;
  return static_cast<int>(std::max(1L, ::sysconf(_SC_NPROCESSORS_ONLN)));
}

}  // namespace tarn
