// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/desktop_entry.hpp"

#include <glib.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>

#include "platform/linux/procfs/file_reading.hpp"
#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

constexpr auto group = "Desktop Entry";

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;

/// Copies and frees a string that GLib returned.
std::string takeString(char* text) {
  const std::unique_ptr<char, decltype(&g_free)> owned(text, g_free);
  return text == nullptr ? std::string() : std::string(text);
}

std::string stringValue(const KeyFile& file, const char* key) {
  return takeString(g_key_file_get_string(file.get(), group, key, nullptr));
}

std::string localizedValue(const KeyFile& file, const char* key) {
  return takeString(g_key_file_get_locale_string(file.get(), group, key, nullptr, nullptr));
}

bool isTrue(const KeyFile& file, const char* key) {
  return g_key_file_get_boolean(file.get(), group, key, nullptr) != 0;
}

/// Returns null if the file is not the desktop file of an application.
KeyFile loadApplication(const std::string& path) {
  // The limit admits files with translations in a hundred languages.
  constexpr std::size_t maxSize = std::size_t{256} << 10;
  KeyFile file(g_key_file_new(), g_key_file_free);
  const std::string text = readFile(path, maxSize + 1);
  const bool isApplication =
      !text.empty() && text.size() <= maxSize && text.find('\0') == std::string::npos &&
      g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr) != 0 &&
      stringValue(file, "Type") == "Application" && !isTrue(file, "Hidden");
  if (!isApplication) file.reset();
  return file;
}

using Words = std::vector<std::string>;

/// Splits a command line. The quoting rules of the Exec key are a subset of the shell's.
Words splitCommandLine(const std::string& line) {
  constexpr std::size_t maxLength = 4096;
  int count = 0;
  char** words = nullptr;
  if (line.size() > maxLength || g_shell_parse_argv(line.c_str(), &count, &words, nullptr) == 0) return {};
  const std::unique_ptr<char*, decltype(&g_strfreev)> owner(words, g_strfreev);
  return {words, words + count};
}

/// "%f", "%U" and so on; "%%" is a literal percent sign.
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

/// Removes leading variable assignments, and `env` with its options.
void removeEnvironment(Words& words) {
  std::size_t first = 0;
  if (!words.empty() && lastPathComponent(words.front()) == "env") {
    ++first;
    while (first < words.size() && words[first].starts_with('-')) {
      first += words[first] == "-u" || words[first] == "-C" ? 2U : 1U;  // these options have a value
    }
  }
  while (first < words.size() && isAssignment(words[first])) ++first;
  words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(std::min(first, words.size())));
}

bool isShell(std::string_view name) {
  constexpr std::array<std::string_view, 6> shells = {"sh", "bash", "dash", "zsh", "ksh", "fish"};
  return std::find(shells.begin(), shells.end(), name) != shells.end();
}

/// The words of the command in `sh -c COMMAND`. nullopt for any other command line.
std::optional<Words> shellCommand(const Words& words) {
  constexpr std::size_t minWords = 3;
  if (words.size() < minWords || !isShell(lastPathComponent(words[0])) || words[1] != "-c")
    return std::nullopt;
  Words command = splitCommandLine(words[2]);
  if (!command.empty() && command.front() == "exec") command.erase(command.begin());
  return command;
}

}  // namespace

std::optional<DesktopEntry> readDesktopEntry(const std::string& path) {
  const KeyFile file = loadApplication(path);
  if (!file) return std::nullopt;
  return DesktopEntry{stringValue(file, "Exec"), !isTrue(file, "NoDisplay"), isTrue(file, "Terminal")};
}

std::optional<DesktopAppearance> readDesktopAppearance(const std::string& path) {
  const KeyFile file = loadApplication(path);
  if (!file) return std::nullopt;
  return DesktopAppearance{localizedValue(file, "Name"), localizedValue(file, "Icon")};
}

std::optional<ExecCommand> parseExecKey(const std::string& exec) {
  Words words = splitCommandLine(exec);
  removeEnvironment(words);
  if (auto command = shellCommand(words)) {
    words = std::move(*command);
    removeEnvironment(words);
  }
  std::erase_if(words, isFieldCode);
  if (words.empty() || words.front().empty()) return std::nullopt;
  std::string program = std::move(words.front());
  words.erase(words.begin());
  return ExecCommand{std::move(program), std::move(words)};
}

bool isLauncher(std::string_view programName) {
  constexpr std::array<std::string_view, 14> launchers = {
      "env",      "flatpak",  "snap",    "pkexec", "sudo",        "su",          "gtk-launch",
      "exo-open", "xdg-open", "busybox", "java",   "systemd-run", "dbus-launch", "gapplication"};
  constexpr std::array<std::string_view, 13> interpreters = {"python", "pypy",  "perl", "ruby", "node",
                                                             "nodejs", "lua",   "php",  "mono", "gjs",
                                                             "wish",   "tclsh", "guile"};
  if (isShell(programName)) return true;
  if (std::find(launchers.begin(), launchers.end(), programName) != launchers.end()) return true;
  // The name may end with a version: "python3.11", "lua5.4".
  const std::size_t version = programName.find_last_not_of("0123456789.-") + 1;
  const std::string_view name = programName.substr(0, version);
  return std::find(interpreters.begin(), interpreters.end(), name) != interpreters.end();
}

}  // namespace tarn
