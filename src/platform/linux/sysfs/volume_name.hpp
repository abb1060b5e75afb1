// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the root volume is called.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// A block device's number.
struct DeviceNumber {
  unsigned major = 0;  ///< 0 for file systems that have no device of their own, even if they lie on one
  unsigned minor = 0;

  bool operator==(const DeviceNumber&) const = default;
};

/// The path of the device manager's record of the device that the root lies on. Where the file system has no
/// device number of its own, that is the device that it was mounted from. Nothing without a device.
std::optional<std::string> rootRecord(const LinuxRoots& roots, DeviceNumber device);

/// The label in a device's record of that database, its escapes undone.
std::optional<std::string> parseLabel(std::string_view record);

/// The device from which the root is mounted, such as "/dev/sda2", by a process's list of mounts, its escapes
/// undone; empty when it is not mounted from a device.
std::string parseRootSource(std::string_view mountInfo);

/// The operating system's name in an os-release file, its quotes undone.
std::optional<std::string> parseSystemName(std::string_view osRelease);

/// The operating system's name, such as "Debian GNU/Linux".
std::optional<std::string> systemName(const LinuxRoots& roots);

}  // namespace tarn
