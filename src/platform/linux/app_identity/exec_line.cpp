// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/exec_line.hpp"

#include <glib.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>

#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

using Words = std::vector<std::string>;

/// The words of a command line, by the shell's rules of quoting.
Words wordsOf(const std::string& line) {
  constexpr std::size_t longest = 4096;
  int count = 0;
  char** found = nullptr;
  if (line.size() > longest || g_shell_parse_argv(line.c_str(), &count, &found, nullptr) == 0) return {};
  const std::unique_ptr<char*, decltype(&g_strfreev)> owner(found, g_strfreev);
  return {found, found + count};
}

bool isFieldCode(const std::string& word) {
  constexpr std::size_t length = 2;
  return word.size() == length && word.front() == '%' && word != "%%";
}

bool isAssignment(const std::string& word) {
  const std::size_t equals = word.find('=');
  if (equals == 0 || equals == std::string::npos) return false;
  return std::all_of(
      word.begin(), word.begin() + static_cast<std::ptrdiff_t>(equals),
      [](unsigned char character) { return std::isalnum(character) != 0 || character == '_'; });
}

/// Drops `env` with its options, and assignments.
void dropEnvironment(Words& words) {
  std::size_t first = 0;
  if (!words.empty() && lastPathComponent(words.front()) == "env") {
    ++first;
    while (first < words.size() && words[first].starts_with('-')) {
      first += words[first] == "-u" || words[first] == "-C" ? 2U : 1U;
    }
  }
  while (first < words.size() && isAssignment(words[first])) ++first;
  words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(std::min(first, words.size())));
}

bool isShell(std::string_view name) {
  constexpr std::array<std::string_view, 6> shells = {"sh", "bash", "dash", "zsh", "ksh", "fish"};
  return std::find(shells.begin(), shells.end(), name) != shells.end();
}

/// The words that `sh -c` is given to run; nothing for any other line.
std::optional<Words> shellCommand(const Words& words) {
  constexpr std::size_t leastWords = 3;
  if (words.size() < leastWords || !isShell(lastPathComponent(words[0])) || words[1] != "-c")
    return std::nullopt;
  Words inner = wordsOf(words[2]);
  if (!inner.empty() && inner.front() == "exec") inner.erase(inner.begin());
  return inner;
}

}  // namespace

std::optional<ExecLine> parseExecLine(const std::string& exec) {
  Words words = wordsOf(exec);
  dropEnvironment(words);
  if (auto inner = shellCommand(words)) {
    words = std::move(*inner);
    dropEnvironment(words);
  }
  std::erase_if(words, isFieldCode);
  if (words.empty() || words.front().empty()) return std::nullopt;
  std::string program = std::move(words.front());
  words.erase(words.begin());
  return ExecLine{std::move(program), std::move(words)};
}

bool runsOthers(std::string_view programName) {
  constexpr std::array<std::string_view, 14> launchers = {
      "env",      "flatpak",  "snap",    "pkexec", "sudo",        "su",          "gtk-launch",
      "exo-open", "xdg-open", "busybox", "java",   "systemd-run", "dbus-launch", "gapplication"};
  constexpr std::array<std::string_view, 13> interpreters = {"python", "pypy",  "perl", "ruby", "node",
                                                             "nodejs", "lua",   "php",  "mono", "gjs",
                                                             "wish",   "tclsh", "guile"};
  if (isShell(programName)) return true;
  if (std::find(launchers.begin(), launchers.end(), programName) != launchers.end()) return true;
  // Interpreters bear their version: "python3.11", "lua5.4".
  const std::size_t version = programName.find_last_not_of("0123456789.-") + 1;
  const std::string_view name = programName.substr(0, version);
  return std::find(interpreters.begin(), interpreters.end(), name) != interpreters.end();
}

}  // namespace tarn
