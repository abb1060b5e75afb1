// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/hardware/volume_name.hpp"

#include <filesystem>
#include <system_error>

#include "platform/linux/system/bounded_file.hpp"
#include "platform/linux/system/text_scan.hpp"

namespace tarn {

namespace {

std::optional<std::string> unlessEmpty(std::string text) {
  if (text.empty()) return std::nullopt;
  return text;
}

/// The rest of the first line that begins with `key`.
std::optional<std::string_view> lineAfter(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    if (line.starts_with(key)) return line.substr(key.size());
  }
  return std::nullopt;
}

/// Undoes the escapes of the device manager: "\x20" for a blank.
std::string withoutHexEscapes(std::string_view text) {
  constexpr int hexadecimal = 16;
  constexpr std::size_t escapeLength = 4;
  std::string plain;
  while (!text.empty()) {
    const std::string_view escape = text.substr(0, escapeLength);
    const bool isEscape = escape.size() == escapeLength && escape.starts_with("\\x");
    const auto code =
        isEscape ? parseWholeNumber<unsigned char>(escape.substr(2), hexadecimal) : std::nullopt;
    plain += code ? static_cast<char>(*code) : text.front();
    text.remove_prefix(code ? escape.size() : 1);
  }
  return plain;
}

/// The number of the device behind a path in /dev, which may be a link.
std::optional<std::string> deviceNumber(const LinuxRoots& roots, std::string_view source) {
  std::error_code error;
  const auto device = std::filesystem::canonical(roots.root + std::string(source), error);
  if (error) return std::nullopt;
  const std::string text = readFile(roots.sys + "/class/block/" + device.filename().string() + "/dev");
  std::string_view rest = text;
  return unlessEmpty(std::string(takeWord(rest)));
}

}  // namespace

std::optional<std::string> parseLabel(std::string_view record) {
  const auto label = lineAfter(record, "E:ID_FS_LABEL_ENC=");
  if (!label) return std::nullopt;
  return unlessEmpty(withoutHexEscapes(*label));
}

std::string_view parseRootSource(std::string_view mountInfo) {
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
  return source.starts_with("/dev/") ? source : std::string_view();
}

std::optional<std::string> rootLabel(const LinuxRoots& roots, DeviceNumber device) {
  std::optional<std::string> number = std::to_string(device.major) + ':' + std::to_string(device.minor);
  if (device.major == 0) {
    const std::string mounts = readFile(roots.proc + "/self/mountinfo", std::size_t{1} << 20);
    const std::string_view source = parseRootSource(mounts);
    number = source.empty() ? std::nullopt : deviceNumber(roots, source);
  }
  if (!number) return std::nullopt;
  return parseLabel(readFile(roots.root + "/run/udev/data/b" + *number));
}

std::optional<std::string> parseSystemName(std::string_view osRelease) {
  const auto value = lineAfter(osRelease, "NAME=");
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
