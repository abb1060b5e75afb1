// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/device_directory.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <memory>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

/// Not every file system tells the kind of its entries.
bool isRegularFile(DIR* directory, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_REG;
  struct stat status {};
  return ::fstatat(::dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISREG(status.st_mode);
}

}  // namespace

std::vector<DirectoryEntry> listDirectory(const std::string& path) {
  const std::unique_ptr<DIR, CloseDirectory> directory(::opendir(path.c_str()));
  std::vector<DirectoryEntry> entries;
  if (!directory) return entries;
  // The stream is this call's own.
  // NOLINTNEXTLINE(concurrency-mt-unsafe)
  while (const dirent* entry = ::readdir(directory.get())) {
    if (entry->d_name[0] == '.') continue;
    entries.push_back({entry->d_name, entry->d_ino, isRegularFile(directory.get(), *entry)});
  }
  std::sort(entries.begin(), entries.end(),
            [](const DirectoryEntry& one, const DirectoryEntry& other) { return one.name < other.name; });
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
  constexpr std::size_t longestText = 4096;  // what the kernel lets a file of sysfs hold
  std::array<char, longestText> buffer{};
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
  constexpr double thousandths = 1000;
  const auto value = number(file);
  if (!value) return std::nullopt;
  return static_cast<double>(*value) / thousandths;
}

bool DeviceClass::hasChanged() {
  auto entries = listDirectory(path_);
  if (isSettled_ && entries == entries_) return false;
  isSettled_ = false;
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
