// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Pure functions that derive the application of a process from its cgroup, arguments and executable path.
//
// A desktop id is a "desktop file ID" as the Desktop Entry Specification defines it, here without ".desktop".
// Functions that return several candidates return the most likely one first.

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// The cgroup path in `/proc/PID/cgroup`: that of the cgroup v2 hierarchy, else that of the version 1
/// hierarchy that systemd uses. Empty if there is neither.
std::string parseCgroupPath(std::string_view text);

/// The first arguments (at most 12) in `/proc/PID/cmdline`. `isComplete`: whether `text` is the
/// whole file. Otherwise the last argument may be truncated, and is omitted unless a zero byte ends it.
std::vector<std::string> parseArguments(std::string_view text, bool isComplete);

/// Desktop ids of the Flatpak or snap that a cgroup belongs to. Empty outside of these sandboxes.
std::vector<std::string> sandboxDesktopIds(std::string_view cgroupPath);

/// Desktop ids that the innermost application unit of systemd ("app-...") in a cgroup path may name.
std::vector<std::string> unitDesktopIds(std::string_view cgroupPath);

/// Absolute path of the script or archive that an interpreter with these arguments runs. For a Java class:
/// the first entry of the class path.
std::optional<std::string> scriptPath(const std::vector<std::string>& arguments);

/// The directory at which the AppImage that contains an executable is mounted.
std::optional<std::string> appImageMount(std::string_view executable);

/// Directories that contain `path` and may belong to one application, innermost first: "/opt/X", "/usr/lib/X"
/// and the like, and their subdirectories. Empty for other paths. The results are views into `path`.
std::vector<std::string_view> privateDirectories(std::string_view path);

}  // namespace tarn
