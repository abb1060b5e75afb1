// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/system/mac_system.hpp"

#include <pthread.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <utility>

#include "platform/macos/readers/kernel_readers.hpp"
#include "platform/macos/readers/mac_extras.hpp"
#include "platform/macos/system/foundation.hpp"

namespace tarn::macos {

namespace {

class SystemByteCountFormatter final : public ByteCountFormatter {
 public:
  std::string string(std::int64_t byteCount) const override { return byteCountText(byteCount); }
};

class SystemPercentFormatter final : public PercentFormatter {
 public:
  std::optional<std::string> string(double fraction) const override { return percentText(fraction); }
};

/// Runs the operation in an autorelease pool.
template <typename Result>
std::function<Result()> pooled(std::function<Result()> operation) {
  return [operation = std::move(operation)] {
    Result result = {};
    withAutoreleasePool([&] { result = operation(); });
    return result;
  };
}

}  // namespace

SamplerPort makeMacSamplerPort() {
  SamplerPort port;
  port.processes = std::make_unique<MacProcScan>(kernelFunctions());
  port.memory = std::make_unique<MacSystemMemoryReader>(kernelFunctions());
  port.uptime = systemUptime;
  port.bundleInformation = bundleInformation;
  return port;
}

ExtrasPort makeMacExtrasPort() {
  const EventSystemSensors sensors(lookUpEventSystem(eventSystemLibrary), objectFunctions());
  PowerPort power = macPowerPort(powerFunctions(), objectFunctions());
  return {.rootVolume = rootVolumeValues,
          .power = {.powerSources = pooled(std::move(power.powerSources)),
                    .batteryController = pooled(std::move(power.batteryController))},
          .temperatures = pooled(SensorReadings([sensors] { return sensors.readings(); })),
          .uptime = systemUptime,
          .thermalState = [] { return thermalStateFromRawValue(thermalState()); }};
}

void setCurrentThreadName(const std::string& name) {
  pthread_setname_np(name.c_str());
  // Only the threads of the task queues get names; the user never waits for their work.
  pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

Formatters systemFormatters() {
  static const SystemByteCountFormatter bytes;
  static const SystemPercentFormatter percents;
  return {bytes, percents};
}

int clampedProcessorCount() {
  constexpr std::int64_t largest = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp<std::int64_t>(activeProcessorCount(), 0, largest));
}

}  // namespace tarn::macos
