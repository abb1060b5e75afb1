// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tarn {

/// Processor time of a process since it started, nanoseconds, all its threads; nothing when the clock of
/// that process cannot be read.
using ProcessClock = std::function<std::optional<std::uint64_t>(std::int32_t pid)>;

/// The kernel's process clocks, one system call per reading. They know pids as this process does: for any
/// process table but this process's own the clock never gives a value.
ProcessClock processClockFor(const std::string& procRoot);

}  // namespace tarn
