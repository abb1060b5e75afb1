// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Capacity and name of the root file system.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "extras/ports.hpp"
#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// Number of a block device.
struct DeviceNumber {
  unsigned major = 0;  ///< 0 for file systems without their own device number, such as Btrfs and overlayfs
  unsigned minor = 0;

  bool operator==(const DeviceNumber&) const = default;
};

/// Path of the udev database record of the device that contains the root file system:
/// /run/udev/data/bMAJOR:MINOR. For a device number with major 0, /proc/self/mountinfo names the device.
/// Returns nullopt when there is no device.
std::optional<std::string> udevRecordPath(const LinuxRoots& roots, DeviceNumber device);

/// The file system's label in a udev database record. A record has one entry per line; "E:KEY=VALUE" is a
/// property of the device. ID_FS_LABEL_ENC is the label, in which udev encodes unsafe bytes as "\xHH".
/// Returns nullopt when there is no label.
std::optional<std::string> parseLabel(std::string_view record);

/// The device from which the root file system is mounted, such as "/dev/sda2"; empty when it is not mounted
/// from a device. Parses /proc/PID/mountinfo (man 5 proc_pid_mountinfo). Fields of a line, separated by
/// spaces, with special characters encoded as "\OOO" (octal):
///
///     (1) mount ID  (2) parent ID  (3) major:minor  (4) root  (5) mount point  (6) mount options
///     (7) zero or more optional fields  (8) "-"  (9) file system type  (10) mount source  (11) super options
std::string parseRootSource(std::string_view mountInfo);

/// The value of NAME in an os-release file (man 5 os-release), such as "Debian GNU/Linux". Removes shell
/// quotes and backslashes; the last assignment is used. Returns nullopt when there is no name.
std::optional<std::string> parseSystemName(std::string_view osRelease);

/// The name of the operating system from /etc/os-release, else /usr/lib/os-release.
std::optional<std::string> systemName(const LinuxRoots& roots);

/// The root file system. Not thread-safe.
class RootVolume {
 public:
  explicit RootVolume(LinuxRoots roots);

  /// Capacity, space available to unprivileged users, and label, from statvfs(3) and the udev database. A
  /// volume without label has the name of the operating system. Returns nullopt when statvfs fails.
  std::optional<VolumeValues> values();

 private:
  std::optional<std::string> name();
  std::optional<std::string> label();

  LinuxRoots roots_;
  std::optional<DeviceNumber> device_;     ///< the device of `recordPath_`
  std::optional<std::string> recordPath_;  ///< of the udev record; nullopt when the device has none
  /// Name of the operating system. The outer optional is nullopt until the name is read; the inner one is
  /// nullopt when the system has no name.
  std::optional<std::optional<std::string>> systemName_;
};

}  // namespace tarn
