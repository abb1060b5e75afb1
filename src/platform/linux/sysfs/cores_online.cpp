// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/cores_online.hpp"

#include <unistd.h>

#include <algorithm>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

int countCoresOnline(const LinuxRoots& roots) {
  if (const auto count = countCpuList(readFile(roots.sys + "/devices/system/cpu/online")))
    return *count;
  return static_cast<int>(std::max(1L, ::sysconf(_SC_NPROCESSORS_ONLN)));
}

}  // namespace tarn
