// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/procfs/linux_roots.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// The processes, memory figures and applications of the machine whose files lie under `roots`. The XDG
/// directories come from the environment. Reads desktop files; not before the first sweep.
SamplerPort makeLinuxSamplerPort(const LinuxRoots& roots);

}  // namespace tarn
