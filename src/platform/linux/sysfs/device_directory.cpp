// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/device_directory.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

/// d_type is DT_UNKNOWN on file systems that do not report the type (man 3 readdir).
bool isRegularFile(DIR* directory, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_REG;
  struct stat status {};
  return ::fstatat(::dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISREG(status.st_mode);
}

}  // namespace

std::vector<DirectoryEntry> listDirectory(const std::string& path) {
  const DirectoryStream directory(::opendir(path.c_str()));
  std::vector<DirectoryEntry> entries;
  if (!directory) return entries;
  // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread uses this stream
  while (const dirent* entry = ::readdir(directory.get())) {
    if (entry->d_name[0] == '.') continue;
    entries.push_back({entry->d_name, entry->d_ino, isRegularFile(directory.get(), *entry)});
  }
  std::sort(entries.begin(), entries.end(),
            [](const DirectoryEntry& left, const DirectoryEntry& right) { return left.name < right.name; });
  return entries;
}

DeviceDirectory::DeviceDirectory(std::string path) : path_(std::move(path)) {
  for (DirectoryEntry& entry : listDirectory(path_)) {
    if (entry.isRegularFile) files_.push_back(std::move(entry.name));
  }
}

bool DeviceDirectory::has(std::string_view file) const {
  return std::binary_search(files_.begin(), files_.end(), file);
}

std::string DeviceDirectory::text(std::string_view file) const {
  if (!has(file)) return {};
  constexpr std::size_t maxAttributeSize = 4096;  // one page, the limit of a sysfs attribute
  std::array<char, maxAttributeSize> buffer{};
  std::string path = path_ + '/';
  path += file;
  std::string_view rest = readOnce(AT_FDCWD, path.c_str(), buffer);
  const std::string_view line = takeLine(rest);
  return std::string(line.substr(0, line.find_last_not_of(" \t\r") + 1));
}

std::optional<std::int64_t> DeviceDirectory::number(std::string_view file) const {
  return parseWholeNumber<std::int64_t>(text(file));
}

std::optional<double> DeviceDirectory::celsius(std::string_view file) const {
  constexpr double millidegreesPerDegree = 1000;
  const auto value = number(file);
  if (!value) return std::nullopt;
  return static_cast<double>(*value) / millidegreesPerDegree;
}

bool DeviceClass::hasChanged() {
  auto entries = listDirectory(path_);
  if (isComplete_ && entries == entries_) return false;
  isComplete_ = false;
  entries_ = std::move(entries);
  return true;
}

std::vector<DeviceDirectory> DeviceClass::devices() const {
  std::vector<DeviceDirectory> devices;
  for (const DirectoryEntry& entry : entries_) {
    if (!entry.isRegularFile) devices.emplace_back(path_ + '/' + entry.name);
  }
  return devices;
}

}  // namespace tarn
