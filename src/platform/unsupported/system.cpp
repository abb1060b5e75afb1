// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <memory>

#include "extras/ports.hpp"
#include "monitor/active_processors.hpp"
#include "monitor/pressure_source.hpp"
#include "monitor/thread_name.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

namespace {

class NoProcesses final : public ProcScan {
 public:
  std::vector<std::int32_t> allPIDs() override { return {}; }
  std::optional<BsdInfo> bsdInfo(std::int32_t /*pid*/) override { return std::nullopt; }
  std::string path(std::int32_t /*pid*/) override { return {}; }
  std::optional<ProcessUsage> usage(std::int32_t /*pid*/) override { return std::nullopt; }
  SharedText processName(std::int32_t /*pid*/) override { return {}; }
};

class NoMemoryFigures final : public SystemMemoryReader {
 public:
  std::uint64_t totalRAM() override { return 0; }
  std::uint64_t swapUsed() override { return 0; }
  SystemMemory read() override { return {}; }
};

class NoPressureEvents final : public PressureSource {
 public:
  void resume(TaskQueue& /*queue*/, Handler /*handler*/) override {}
};

}  // namespace

SamplerPort platformSamplerPort() {
  SamplerPort port;
  port.processes = std::make_unique<NoProcesses>();
  port.memory = std::make_unique<NoMemoryFigures>();
  port.uptime = [] { return 0.0; };
  return port;
}

ExtrasPort platformExtrasPort() {
  return {.rootVolume = [] { return std::nullopt; },
          .power = {.powerSources = [] { return std::vector<std::optional<PropertyDictionary>>(); },
                    .batteryController = [] { return std::nullopt; }},
          .temperatures = [] { return std::vector<double>(); },
          .uptime = [] { return 0.0; },
          .thermalState = [] { return ThermalState::unknown; }};
}

std::unique_ptr<PressureSource> platformPressureSource() {
  return std::make_unique<NoPressureEvents>();
}

std::optional<std::int32_t> platformPressureLevel() {
  return std::nullopt;
}

int platformActiveProcessorCount() {
  return 1;
}

void setCurrentThreadName(const std::string& /*name*/) {}

}  // namespace tarn
