// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <ctime>

#include "platform/linux/system/linux_proc_scan.hpp"
#include "platform/linux/system/linux_system_memory_reader.hpp"
#include "sampling/platform_readers.hpp"

namespace tarn {

namespace {

double uptimeSeconds() {
  struct timespec time {};
  if (::clock_gettime(CLOCK_MONOTONIC, &time) != 0) return 0;
  constexpr double nanosPerSecond = 1e9;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / nanosPerSecond;
}

}  // namespace

SamplerPort platformSamplerPort() {
  SamplerPort port;
  port.processes = std::make_unique<LinuxProcScan>(LinuxRoots{});
  port.memory = std::make_unique<LinuxSystemMemoryReader>(LinuxRoots{});
  port.uptime = uptimeSeconds;
  return port;
}

}  // namespace tarn
