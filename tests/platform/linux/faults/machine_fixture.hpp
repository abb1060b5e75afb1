// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// A machine with content in every file that Tarn reads.

#pragma once

#include "platform/linux/procfs/kernel_clocks.hpp"
#include "sampling/process_source.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {

/// Writes the files: hardware of a laptop, kernel thread 2, processes 40 and 41 of an application, process 42
/// without an application, memory figures, desktop files.
void writeMachineFixture(const TemporaryTree& tree);

/// The sampler port of that machine, composed as in the program, but with these clocks. It checks for changed
/// desktop files in every sweep.
SamplerPort makeMachineFixturePort(const LinuxRoots& roots, ProcessClock clock,
                                   std::function<double()> uptime);

}  // namespace tarn
