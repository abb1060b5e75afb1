// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// What tells which application a process belongs to.
struct ProcessFacts {
  std::string executable;    ///< as its own name space sees it; empty when it is refused
  std::string controlGroup;  ///< path in the hierarchy that the session manager makes
};

/// Reads the facts of a process; what is refused is empty.
ProcessFacts readProcessFacts(const LinuxRoots& roots, std::int32_t pid);

/// At most the first dozen arguments of a process; none when they are refused.
std::vector<std::string> readArguments(const LinuxRoots& roots, std::int32_t pid);

/// The path of a process's control group in `/proc/PID/cgroup`: the unified one, else the manager's own.
std::string parseControlGroup(std::string_view text);

/// The first arguments in `/proc/PID/cmdline`. One that is cut off at the end of the text is left out unless
/// `isWhole`.
std::vector<std::string> parseArguments(std::string_view text, bool isWhole);

}  // namespace tarn
