// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// Number of processor cores online according to the kernel's list below `/sys`; what the C library knows
/// where there is none. At least 1.
int activeProcessorCount(const LinuxRoots& roots);

}  // namespace tarn
