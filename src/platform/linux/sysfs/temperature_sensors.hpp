// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/sysfs/device_directory.hpp"
#include "platform/linux/sysfs/thermal_zones.hpp"

namespace tarn {

/// Whether a hardware monitoring chip or a thermal zone of that name measures the processor itself. Those on
/// the mainboard do not count: their unconnected inputs report nonsense.
bool isProcessorSensor(std::string_view name);

/// The processor's temperature sensors: those of its own monitoring chips; where they give nothing, thermal
/// zones of the processor; where there are none either, the firmware's own zone.
class ProcessorSensors {
 public:
  explicit ProcessorSensors(const std::string& sys) : chips_(sys + "/class/hwmon") {}

  /// The readings of all sensors that give one, degrees Celsius. `zones` are refreshed by the caller.
  std::vector<double> readings(const ThermalZones& zones);

 private:
  struct Chip {
    DeviceDirectory directory;
    std::vector<std::string> inputs;  ///< its temperature files
  };

  void lookForSensors();

  DeviceClass chips_;
  std::vector<Chip> sensors_;  ///< as of the last change of the class
};

}  // namespace tarn
