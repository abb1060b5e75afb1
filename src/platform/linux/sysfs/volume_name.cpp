// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/volume_name.hpp"

#include <filesystem>
#include <system_error>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

std::optional<std::string> unlessEmpty(std::string text) {
  if (text.empty()) return std::nullopt;
  return text;
}

/// The rest of the last line that begins with `key`, without blanks at its end.
std::optional<std::string_view> lastLineAfter(std::string_view text, std::string_view key) {
  std::optional<std::string_view> rest;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    if (line.starts_with(key))
      rest = line.substr(key.size(), line.find_last_not_of(" \t\r") + 1 - key.size());
  }
  return rest;
}

/// The number of the device behind a path in /dev, which may be a link.
std::optional<std::string> deviceNumber(const LinuxRoots& roots, const std::string& source) {
  std::error_code error;
  const auto device = std::filesystem::canonical(roots.root + source, error);
  if (error) return std::nullopt;
  const std::string text = readFile(roots.sys + "/class/block/" + device.filename().string() + "/dev");
  std::string_view rest = text;
  return unlessEmpty(std::string(takeWord(rest)));
}

}  // namespace

std::optional<std::string> parseLabel(std::string_view record) {
  constexpr int hexadecimal = 16;
  const auto label = lastLineAfter(record, "E:ID_FS_LABEL_ENC=");
  if (!label) return std::nullopt;
  return unlessEmpty(withoutEscapes(*label, "\\x", 2, hexadecimal));
}

std::string parseRootSource(std::string_view mountInfo) {
  std::string_view source;
  while (!mountInfo.empty()) {
    std::string_view line = takeLine(mountInfo);
    // Number, parent, device, directory in the file system, mount point; a lone hyphen ends the options.
    constexpr int mountPoint = 5;
    std::string_view word;
    for (int i = 0; i < mountPoint; ++i) word = takeWord(line);
    if (word != "/") continue;
    while (!word.empty() && word != "-") word = takeWord(line);
    takeWord(line);           // kind of file system
    source = takeWord(line);  // a later mount hides an earlier one
  }
  constexpr int octal = 8;
  return source.starts_with("/dev/") ? withoutEscapes(source, "\\", 3, octal) : std::string();
}

std::optional<std::string> rootRecord(const LinuxRoots& roots, DeviceNumber device) {
  std::optional<std::string> number = std::to_string(device.major) + ':' + std::to_string(device.minor);
  if (device.major == 0) {
    const std::string mounts = readFile(roots.proc + "/self/mountinfo", std::size_t{1} << 20);
    const std::string source = parseRootSource(mounts);
    number = source.empty() ? std::nullopt : deviceNumber(roots, source);
  }
  if (!number) return std::nullopt;
  return roots.root + "/run/udev/data/b" + *number;
}

std::optional<std::string> parseSystemName(std::string_view osRelease) {
  const auto value = lastLineAfter(osRelease, "NAME=");
  if (!value) return std::nullopt;
  std::string name;
  const char quote = value->starts_with('"') || value->starts_with('\'') ? value->front() : '\0';
  for (std::size_t i = quote == '\0' ? 0 : 1; i < value->size() && (*value)[i] != quote; ++i) {
    if (quote != '\'' && (*value)[i] == '\\' && i + 1 < value->size()) ++i;
    name += (*value)[i];
  }
  return unlessEmpty(std::move(name));
}

std::optional<std::string> systemName(const LinuxRoots& roots) {
  for (const auto* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    if (auto name = parseSystemName(readFile(roots.root + path))) return name;
  }
  return std::nullopt;
}

}  // namespace tarn
