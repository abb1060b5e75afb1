// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tarn {

/// Returns the CPU time that a process has used since it started, in nanoseconds, over all its threads;
/// nullopt when its clock cannot be read.
using ProcessClock = std::function<std::optional<std::uint64_t>(std::int32_t pid)>;

/// The CPU clocks of the running kernel; one system call for each reading. They take pids of this process's
/// pid namespace, so the returned clock returns nullopt unless `procRoot` is a procfs of that namespace.
ProcessClock processClockFor(const std::string& procRoot);

/// Returns the seconds since boot without the time in suspend (CLOCK_MONOTONIC); 0 on failure.
double uptimeSeconds();

}  // namespace tarn
