// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "extras/ports.hpp"
#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// The extras of the machine whose files lie under these roots. Which devices there are is kept between two
/// gatherings, for as long as none comes or goes; what they say is not. Reads nothing before the first call.
ExtrasPort linuxExtrasPort(const LinuxRoots& roots);

}  // namespace tarn
