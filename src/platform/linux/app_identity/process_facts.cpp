// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/process_facts.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <string_view>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

constexpr std::size_t longest = 4096;  // of what is read of a process

std::string directoryOf(const LinuxRoots& roots, std::int32_t pid) {
  return roots.proc + '/' + std::to_string(pid);
}

}  // namespace

std::string parseControlGroup(std::string_view text) {
  std::string managers;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    constexpr std::string_view unified = "0::";
    constexpr std::string_view named = ":name=systemd:";
    if (line.starts_with(unified) && line != "0::/") return std::string(line.substr(unified.size()));
    const std::size_t name = line.find(named);
    if (name != std::string_view::npos) managers = line.substr(name + named.size());
  }
  return managers;
}

std::vector<std::string> parseArguments(std::string_view text, bool isWhole) {
  constexpr std::size_t most = 12;
  std::vector<std::string> arguments;
  while (!text.empty() && arguments.size() < most) {
    const std::size_t end = text.find('\0');
    if (end == std::string_view::npos && !isWhole) break;
    arguments.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return arguments;
}

ProcessFacts readProcessFacts(const LinuxRoots& roots, std::int32_t pid) {
  const std::string directory = directoryOf(roots, pid);
  std::array<char, longest> buffer{};
  ProcessFacts facts;
  const ssize_t length = ::readlink((directory + "/exe").c_str(), buffer.data(), buffer.size());
  // A target that fills the buffer may be cut off.
  if (length > 0 && static_cast<std::size_t>(length) < buffer.size()) {
    facts.executable = withoutDeletedMark({buffer.data(), static_cast<std::size_t>(length)});
  }
  facts.controlGroup = parseControlGroup(readOnce(AT_FDCWD, (directory + "/cgroup").c_str(), buffer));
  return facts;
}

std::vector<std::string> readArguments(const LinuxRoots& roots, std::int32_t pid) {
  std::array<char, longest> buffer{};
  const std::string path = directoryOf(roots, pid) + "/cmdline";
  const std::string_view commandLine = readOnce(AT_FDCWD, path.c_str(), buffer);
  return parseArguments(commandLine, commandLine.size() < buffer.size());
}

}  // namespace tarn
