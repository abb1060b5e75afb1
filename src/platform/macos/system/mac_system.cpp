// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/system/mac_system.hpp"

#include <pthread.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <utility>

#include "platform/macos/foundation/foundation.hpp"
#include "platform/macos/readers/dispatch_pressure_source.hpp"
#include "platform/macos/readers/event_system_sensors.hpp"
#include "platform/macos/readers/mac_power.hpp"
#include "platform/macos/readers/mac_proc_scan.hpp"
#include "platform/macos/readers/mac_system_memory_reader.hpp"
#include "platform/macos/system/framework_binding.hpp"

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

/// The same operation with an autorelease pool around it.
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
  port.processes = std::make_unique<MacProcScan>(systemFunctions());
  port.memory = std::make_unique<MacSystemMemoryReader>(systemFunctions());
  port.uptime = systemUptime;
  port.bundleInformation = bundleInformation;
  return port;
}

ExtrasPort makeMacExtrasPort() {
  const EventSystemSensors sensors(lookUpEventSystem(), systemObjectFunctions());
  PowerPort power = macPowerPort(systemPowerFunctions(), systemObjectFunctions());
  return {.rootVolume = rootVolumeValues,
          .power = {.powerSources = pooled(std::move(power.powerSources)),
                    .batteryController = pooled(std::move(power.batteryController))},
          .temperatures = pooled(SensorReadings([sensors] { return sensors.readings(); })),
          .uptime = systemUptime,
          .thermalState = [] { return thermalStateFromRawValue(thermalState()); }};
}

void setCurrentThreadName(const std::string& name) {
  pthread_setname_np(name.c_str());
  // Threads that have names are those of our queues, whose work nobody waits for.
  pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

Formatters systemFormatters() {
  static const SystemByteCountFormatter bytes;
  static const SystemPercentFormatter percents;
  return {bytes, percents};
}

int clampedProcessorCount() {
  constexpr std::int64_t most = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp<std::int64_t>(activeProcessorCount(), 0, most));
}

}  // namespace tarn::macos

namespace tarn {

const ByteCountFormatter& platformByteCountFormatter() {
  return macos::systemFormatters().bytes;
}

const PercentFormatter& platformPercentFormatter() {
  return macos::systemFormatters().percents;
}

}  // namespace tarn
