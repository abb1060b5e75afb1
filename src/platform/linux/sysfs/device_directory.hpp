// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Devices as sysfs shows them: a directory per device, a short text file per fact.

#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// One entry of a directory. The node is the kernel's own number, so that a device which came back under the
/// name of another one is a different entry.
struct DirectoryEntry {
  std::string name;
  ino_t node = 0;
  bool isRegularFile = false;

  bool operator==(const DirectoryEntry&) const = default;
};

/// What is in a directory, ordered by name; empty when it cannot be listed.
std::vector<DirectoryEntry> listDirectory(const std::string& path);

/// A device's directory with the facts that it had when it was listed. Only what was a regular file then is
/// ever opened: a pipe or a device in the place of one is passed over.
class DeviceDirectory {
 public:
  explicit DeviceDirectory(std::string path);

  const std::vector<std::string>& files() const { return files_; }
  bool has(std::string_view file) const;

  /// The first line of a file, without blanks at its end; empty when there is no such file, or when its
  /// driver has no answer. Three system calls, none for a file that was not listed.
  std::string text(std::string_view file) const;

  /// The whole number that a file holds.
  std::optional<std::int64_t> number(std::string_view file) const;

  /// The temperature that a file holds in thousandths of a degree, in degrees Celsius.
  std::optional<double> celsius(std::string_view file) const;

 private:
  std::string path_;
  std::vector<std::string> files_;  ///< ordered
};

/// A directory with one directory, or link to one, per device, such as /sys/class/hwmon.
class DeviceClass {
 public:
  explicit DeviceClass(std::string path) : path_(std::move(path)) {}

  /// Lists the class again. True until `settle` is called, and whenever a device came or went since the last
  /// call: what is kept of its devices is void then.
  bool hasChanged();

  /// Says that all that is kept of its devices is there. Not for devices that had not answered yet when they
  /// were met.
  void settle() { isSettled_ = true; }

  /// The devices of the last listing, ordered by name.
  std::vector<DeviceDirectory> devices() const;

 private:
  std::string path_;
  std::vector<DirectoryEntry> entries_;
  bool isSettled_ = false;
};

}  // namespace tarn
