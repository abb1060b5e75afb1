// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tarn {

/// Finds the process that calls itself `declared`, for example in the window property _NET_WM_PID. A
/// sandboxed process declares its pid in its own pid namespace; the result is its pid in the namespace of
/// Tarn. Only user processes of the user `owner` are considered. Returns nullopt when no process or more than
/// one matches, and when `deadline` passes. `proc` is the path of a procfs. Any thread.
std::optional<std::int32_t> resolveNamespacedPid(const std::string& proc, std::int32_t declared,
                                                 std::uint32_t owner,
                                                 std::chrono::steady_clock::time_point deadline);

}  // namespace tarn
