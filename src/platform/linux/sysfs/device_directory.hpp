// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Devices in sysfs: one directory per device, one short text file per attribute
// (Documentation/filesystems/sysfs.rst). None of these classes is thread-safe.

#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// One entry of a directory. The inode number differs when a device was replaced by another one of the same
/// name.
struct DirectoryEntry {
  std::string name;
  ino_t inode = 0;
  bool isRegularFile = false;

  bool operator==(const DirectoryEntry&) const = default;
};

/// The entries of a directory, sorted by name, without those whose name begins with a dot. Empty when the
/// directory cannot be listed.
std::vector<DirectoryEntry> listDirectory(const std::string& path);

/// A device's directory and the names of its attribute files. The constructor lists the directory; the
/// functions read attributes again at each call. Files that were not regular files at construction (links,
/// pipes, devices) are never opened.
class DeviceDirectory {
 public:
  explicit DeviceDirectory(std::string path);

  /// Names of the regular files, sorted.
  const std::vector<std::string>& files() const { return files_; }
  bool has(std::string_view file) const;

  /// The first line of a file, without spaces, tabs and carriage returns at its end. Empty when there is no
  /// such file or the driver returns an error. Three system calls; none for a file that is not in `files()`.
  std::string text(std::string_view file) const;

  /// `text(file)` as an integer; nullopt when it is not one.
  std::optional<std::int64_t> number(std::string_view file) const;

  /// A file in millidegrees Celsius, the unit of hwmon and thermal zones, as degrees Celsius.
  std::optional<double> celsius(std::string_view file) const;

 private:
  std::string path_;
  std::vector<std::string> files_;  ///< sorted
};

/// A directory such as /sys/class/hwmon that contains one directory, or link to a directory, per device.
class DeviceClass {
 public:
  explicit DeviceClass(std::string path) : path_(std::move(path)) {}

  /// Lists the directory. Returns true when a device was added or removed since the last call, and at every
  /// call before `markComplete`. The caller must then discard its cached data of the devices.
  bool hasChanged();

  /// Declares that all devices of the last listing could be read. Do not call it while a driver that was just
  /// bound returns errors: the next `hasChanged` then returns true, and the device is read again.
  void markComplete() { isComplete_ = true; }

  /// The devices of the last listing, sorted by name.
  std::vector<DeviceDirectory> devices() const;

 private:
  std::string path_;
  std::vector<DirectoryEntry> entries_;
  bool isComplete_ = false;
};

}  // namespace tarn
