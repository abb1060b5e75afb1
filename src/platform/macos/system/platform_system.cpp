// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the rooms above ask of a platform and that needs no window.

#include <pthread.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <utility>

#include "extras/ports.hpp"
#include "monitor/active_processors.hpp"
#include "monitor/pressure_source.hpp"
#include "monitor/thread_name.hpp"
#include "platform/macos/foundation/foundation.hpp"
#include "platform/macos/readers/dispatch_pressure_source.hpp"
#include "platform/macos/readers/event_system_sensors.hpp"
#include "platform/macos/readers/mac_power.hpp"
#include "platform/macos/readers/mac_proc_scan.hpp"
#include "platform/macos/readers/mac_system_memory_reader.hpp"
#include "platform/macos/system/framework_binding.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

namespace {

/// The same operation with an autorelease pool around it.
template <typename Result>
std::function<Result()> pooled(std::function<Result()> operation) {
  return [operation = std::move(operation)] {
    Result result = {};
    macos::withAutoreleasePool([&] { result = operation(); });
    return result;
  };
}

}  // namespace

SamplerPort platformSamplerPort() {
  SamplerPort port;
  port.processes = std::make_unique<macos::MacProcScan>(macos::systemFunctions());
  port.memory = std::make_unique<macos::MacSystemMemoryReader>(macos::systemFunctions());
  port.uptime = macos::systemUptime;
  port.bundleInformation = macos::bundleInformation;
  return port;
}

ExtrasPort platformExtrasPort() {
  const macos::EventSystemSensors sensors(macos::lookUpEventSystem(), macos::systemObjectFunctions());
  PowerPort power = macos::macPowerPort(macos::systemPowerFunctions(), macos::systemObjectFunctions());
  return {.rootVolume = macos::rootVolumeValues,
          .power = {.powerSources = pooled(std::move(power.powerSources)),
                    .batteryController = pooled(std::move(power.batteryController))},
          .temperatures = pooled(SensorReadings([sensors] { return sensors.readings(); })),
          .uptime = macos::systemUptime,
          .thermalState = [] { return thermalStateFromRawValue(macos::thermalState()); }};
}

std::unique_ptr<PressureSource> platformPressureSource() {
  return std::make_unique<macos::DispatchPressureSource>(macos::dispatchFunctions());
}

std::optional<std::int32_t> platformPressureLevel() {
  return macos::readPressureLevel(macos::systemFunctions());
}

int platformActiveProcessorCount() {
  constexpr std::int64_t most = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp<std::int64_t>(macos::activeProcessorCount(), 0, most));
}

void setCurrentThreadName(const std::string& name) {
  pthread_setname_np(name.c_str());
  // Threads that have names are those of our queues, whose work nobody waits for.
  pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

}  // namespace tarn
