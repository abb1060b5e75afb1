// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/applications/process_facts.hpp"

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "platform/linux/system/bounded_file.hpp"
#include "platform/linux/system/process_files.hpp"
#include "platform/linux/system/text_scan.hpp"

namespace tarn {

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
  const std::string directory = roots.proc + '/' + std::to_string(pid);
  constexpr std::size_t longest = 4096;
  ProcessFacts facts;
  std::error_code refused;
  const std::string executable = std::filesystem::read_symlink(directory + "/exe", refused).string();
  facts.executable = withoutDeletedMark(executable);
  const std::string commandLine = readFile(directory + "/cmdline", longest);
  facts.arguments = parseArguments(commandLine, commandLine.size() < longest);
  facts.controlGroup = parseControlGroup(readFile(directory + "/cgroup", longest));
  return facts;
}

}  // namespace tarn
