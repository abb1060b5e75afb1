// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// Number of online logical processors, at least 1. It does not depend on the CPU affinity of this process.
/// Reads /sys/devices/system/cpu/online (Documentation/admin-guide/cputopology.rst); without it uses
/// sysconf(3).
int countCoresOnline(const LinuxRoots& roots);

}  // namespace tarn
