// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "extras/ports.hpp"
#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// The extras of the machine whose /proc, /sys and / are at `roots`. Reads nothing before the first call of a
/// function of the port. The list of devices is kept between readings until a device is added or removed;
/// their values are read again each time.
ExtrasPort linuxExtrasPort(const LinuxRoots& roots);

/// Number of online logical processors, at least 1. It does not depend on the CPU affinity of this process.
/// Reads /sys/devices/system/cpu/online (Documentation/admin-guide/cputopology.rst); without it uses
/// sysconf(3).
int countCoresOnline(const LinuxRoots& roots);

}  // namespace tarn
