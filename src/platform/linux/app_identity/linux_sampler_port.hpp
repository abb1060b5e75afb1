// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/app_identity/linux_application_rules.hpp"
#include "platform/linux/procfs/kernel_clocks.hpp"
#include "platform/linux/procfs/linux_roots.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// Returns the value of an environment variable; empty if it is not set.
using Environment = std::function<std::string(const char* variable)>;

/// The environment of this process. Must not be called while another thread changes it.
std::string environmentVariable(const char* variable);

/// The clocks that a sampler port reads. Tests replace them.
struct SamplerClocks {
  /// CPU time of a process. If unset: the kernel's process clocks where `roots.proc` is the procfs of this
  /// process's pid namespace, else the ticks in /proc/PID/stat.
  ProcessClock processes;

  /// Seconds since the system started.
  std::function<double()> uptime = uptimeSeconds;

  /// Limits how often the rules check for changed desktop files.
  LinuxApplicationRules::Clock applications = std::chrono::steady_clock::now;
};

/// Composes the port of the machine whose files lie below `roots`. Desktop files are first read in the first
/// sweep. The application rules share ownership of the process source.
SamplerPort makeLinuxSamplerPort(const LinuxRoots& roots,
                                 const Environment& environment = environmentVariable,
                                 SamplerClocks clocks = {});

/// The data directories of the XDG Base Directory Specification, highest precedence first: $XDG_DATA_HOME,
/// then $XDG_DATA_DIRS, then the directories to which Flatpak and snapd export desktop files. Relative paths
/// are ignored, as that document requires.
std::vector<std::string> dataDirectories(const Environment& environment);

/// The directories of $PATH, then the usual program directories, which the PATH of a session may lack.
std::vector<std::string> programDirectories(const Environment& environment);

}  // namespace tarn
