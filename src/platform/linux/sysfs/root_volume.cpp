// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/root_volume.hpp"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

std::optional<std::string> nulloptIfEmpty(std::string text) {
  if (text.empty()) return std::nullopt;
  return text;
}

/// The rest of the last line that begins with `key`, without whitespace at its end.
std::optional<std::string_view> lastValueOf(std::string_view text, std::string_view key) {
  std::optional<std::string_view> rest;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    if (line.starts_with(key))
      rest = line.substr(key.size(), line.find_last_not_of(" \t\r") + 1 - key.size());
  }
  return rest;
}

/// The number "MAJOR:MINOR" of a device below /dev. `source` may be a symbolic link.
std::optional<std::string> readDeviceNumber(const LinuxRoots& roots, const std::string& source) {
  std::error_code error;
  const auto device = std::filesystem::canonical(roots.root + source, error);
  if (error) return std::nullopt;
  const std::string text = readFile(roots.sys + "/class/block/" + device.filename().string() + "/dev");
  std::string_view rest = text;
  return nulloptIfEmpty(std::string(takeWord(rest)));
}

/// Bytes in `count` fragments. Returns nullopt on overflow.
std::optional<std::int64_t> bytesIn(fsblkcnt_t count, unsigned long fragmentSize) {
  std::int64_t bytes = 0;
  if (__builtin_mul_overflow(count, fragmentSize, &bytes)) return std::nullopt;
  return bytes;
}

}  // namespace

std::optional<std::string> parseLabel(std::string_view record) {
  constexpr int hexadecimal = 16;
  const auto label = lastValueOf(record, "E:ID_FS_LABEL_ENC=");
  if (!label) return std::nullopt;
  return nulloptIfEmpty(withoutEscapes(*label, "\\x", 2, hexadecimal));
}

std::string parseRootSource(std::string_view mountInfo) {
  std::string_view source;
  while (!mountInfo.empty()) {
    std::string_view line = takeLine(mountInfo);
    constexpr int mountPointField = 5;
    std::string_view word;
    for (int i = 0; i < mountPointField; ++i) word = takeWord(line);
    if (word != "/") continue;
    while (!word.empty() && word != "-") word = takeWord(line);
    takeWord(line);           // file system type
    source = takeWord(line);  // a later mount hides an earlier one
  }
  constexpr int octal = 8;
  return source.starts_with("/dev/") ? withoutEscapes(source, "\\", 3, octal) : std::string();
}

std::optional<std::string> udevRecordPath(const LinuxRoots& roots, DeviceNumber device) {
  std::optional<std::string> number = std::to_string(device.major) + ':' + std::to_string(device.minor);
  if (device.major == 0) {
    constexpr std::size_t maxMountInfoSize = std::size_t{1} << 20;
    const std::string source = parseRootSource(readFile(roots.proc + "/self/mountinfo", maxMountInfoSize));
    number = source.empty() ? std::nullopt : readDeviceNumber(roots, source);
  }
  if (!number) return std::nullopt;
  return roots.root + "/run/udev/data/b" + *number;
}

std::optional<std::string> parseSystemName(std::string_view osRelease) {
  const auto value = lastValueOf(osRelease, "NAME=");
  if (!value) return std::nullopt;
  std::string name;
  const char quote = value->starts_with('"') || value->starts_with('\'') ? value->front() : '\0';
  for (std::size_t i = quote == '\0' ? 0 : 1; i < value->size() && (*value)[i] != quote; ++i) {
    if (quote != '\'' && (*value)[i] == '\\' && i + 1 < value->size()) ++i;
    name += (*value)[i];
  }
  return nulloptIfEmpty(std::move(name));
}

std::optional<std::string> systemName(const LinuxRoots& roots) {
  for (const auto* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    if (auto name = parseSystemName(readFile(roots.root + path))) return name;
  }
  return std::nullopt;
}

RootVolume::RootVolume(LinuxRoots roots) : roots_(std::move(roots)) {}

std::optional<VolumeValues> RootVolume::values() {
  struct statvfs status {};
  if (::statvfs((roots_.root + "/").c_str(), &status) != 0) return std::nullopt;
  return VolumeValues{bytesIn(status.f_blocks, status.f_frsize), bytesIn(status.f_bavail, status.f_frsize),
                      name()};
}

std::optional<std::string> RootVolume::name() {
  if (auto label = this->label()) return label;
  if (!systemName_) systemName_ = systemName(roots_);
  return *systemName_;
}

std::optional<std::string> RootVolume::label() {
  struct stat status {};
  if (::stat((roots_.root + "/").c_str(), &status) != 0) return std::nullopt;
  // Finding the record takes many system calls, so its path is kept while the device number is unchanged. The
  // record itself is read each time because the label may change.
  const DeviceNumber device{major(status.st_dev), minor(status.st_dev)};
  if (device != device_) {
    recordPath_ = udevRecordPath(roots_, device);
    device_ = device;
  }
  return recordPath_ ? parseLabel(readFile(*recordPath_)) : std::nullopt;
}

}  // namespace tarn
