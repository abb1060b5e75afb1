// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// A machine with something for every reader of files to read.

#pragma once

#include "platform/linux/procfs/kernel_clocks.hpp"
#include "support/temporary_tree.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// Writes the machine: a laptop's hardware, processes 40, 41 and 42 with and without an application, a thread
/// of the kernel, memory figures, the applications' files.
void writeWholeMachine(const TemporaryTree& tree);

/// Its sampler's port, as the running system's is made.
SamplerPort wholeMachinePort(const LinuxRoots& roots, ProcessClock clock, std::function<double()> uptime);

}  // namespace tarn
