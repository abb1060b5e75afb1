// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/system/linux_proc_scan.hpp"
#include "platform/linux/system/linux_system_memory_reader.hpp"
#include "platform/linux/system/uptime.hpp"
#include "sampling/platform_readers.hpp"

namespace tarn {

SamplerPort platformSamplerPort() {
  SamplerPort port;
  port.processes = std::make_unique<LinuxProcScan>(LinuxRoots{});
  port.memory = std::make_unique<LinuxSystemMemoryReader>(LinuxRoots{});
  port.uptime = uptimeSeconds;
  return port;
}

}  // namespace tarn
