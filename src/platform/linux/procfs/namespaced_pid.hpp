// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tarn {

/// The process that may call itself `declared`: the one of that pid, or one in a sandbox, where processes
/// have pids of their own that say nothing outside. Only processes of the user `owner` count, and only
/// programs. Nothing where none or several could be meant, or when the deadline passes. `proc` as mounted;
/// any thread.
std::optional<std::int32_t> processThatDeclares(const std::string& proc, std::int32_t declared,
                                                std::uint32_t owner,
                                                std::chrono::steady_clock::time_point deadline);

}  // namespace tarn
