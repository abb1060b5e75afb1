// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/linux_sampler_port.hpp"

#include <cstdlib>
#include <memory>

#include "platform/linux/app_identity/application_information.hpp"
#include "platform/linux/app_identity/data_directories.hpp"
#include "platform/linux/app_identity/linux_application_rules.hpp"
#include "platform/linux/procfs/sleeping_process_cache.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/procfs/kernel_clocks.hpp"

namespace tarn {

namespace {

std::string environmentValue(const char* variable) {
  const char* const value = std::getenv(variable);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

SamplerPort makeLinuxSamplerPort(const LinuxRoots& roots) {
  auto processes = std::make_shared<SleepingProcessCache>(ProcfsReader(roots));
  ApplicationIndex index(roots, dataDirectories(environmentValue), programDirectories(environmentValue));
  SamplerPort port;
  port.applicationRules = std::make_unique<LinuxApplicationRules>(
      roots, std::move(index), [processes](std::int32_t pid) { return processes->execId(pid); });
  port.processes = processes;
  port.memory = std::make_unique<LinuxSystemMemoryReader>(roots);
  port.uptime = uptimeSeconds;
  port.bundleInformation = [roots](const std::string& path) { return applicationInformation(roots, path); };
  return port;
}

}  // namespace tarn
