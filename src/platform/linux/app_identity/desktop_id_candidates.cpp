// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/desktop_id_candidates.hpp"

#include <algorithm>
#include <array>

#include "platform/linux/app_identity/exec_line.hpp"
#include "platform/linux/procfs/text_scan.hpp"
#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

using Parts = std::vector<std::string_view>;

Parts split(std::string_view text, char separator) {
  Parts parts;
  while (true) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::string joined(const Parts& parts, std::size_t begin, std::size_t end, char separator) {
  std::string text;
  for (std::size_t i = begin; i < end; ++i) {
    if (i > begin) text += separator;
    text += parts[i];
  }
  return text;
}

/// Undoes the manager's escapes: "\x2d" for a hyphen.
std::string unescaped(std::string_view text) {
  constexpr int hexadecimal = 16;
  return withoutEscapes(text, "\\x", 2, hexadecimal);
}

/// Drops an ending, and says whether it was there.
bool drop(std::string_view& text, std::string_view ending) {
  if (!text.ends_with(ending)) return false;
  text.remove_suffix(ending.size());
  return true;
}

/// Likewise a beginning.
bool dropStem(std::string_view& text, std::string_view stem) {
  if (!text.starts_with(stem)) return false;
  text.remove_prefix(stem.size());
  return true;
}

std::string snapId(std::string id, std::string_view command) {
  id += '_';
  id += command;
  return id;
}

void addUnlessKnown(std::vector<std::string>& ids, std::string id) {
  if (!id.empty() && std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(std::move(id));
}

bool isClassPath(std::string_view option) {
  return option == "-cp" || option == "-classpath" || option == "--class-path";
}

bool takesAValue(std::string_view option) {
  constexpr std::array<std::string_view, 4> options = {"-W", "-X", "-I", "-r"};
  return isClassPath(option) || std::find(options.begin(), options.end(), option) != options.end();
}

/// Options after which there is no script: code on the command line, or a module by name.
bool replacesTheScript(std::string_view option) {
  return option == "-c" || option == "-e" || option == "-m" || option == "-";
}

}  // namespace

std::vector<std::string> sandboxIds(std::string_view controlGroup) {
  constexpr std::string_view flatpak = "app-flatpak-";
  constexpr std::string_view snap = "snap.";
  std::vector<std::string> ids;
  for (std::string_view unit : split(controlGroup, '/')) {
    if (dropStem(unit, flatpak) && drop(unit, ".scope")) {
      addUnlessKnown(ids, unescaped(unit.substr(0, unit.rfind('-'))));
      return ids;
    }
    if (dropStem(unit, snap) && (drop(unit, ".scope") || drop(unit, ".service"))) {
      const Parts parts = split(unit, '.');
      const std::string name = unescaped(parts.front());
      // What follows the command is a number of the launch, after a full stop or a hyphen.
      const std::string command = parts.size() == 1 ? name : unescaped(parts[1]);
      addUnlessKnown(ids, snapId(name, command));
      addUnlessKnown(ids, snapId(name, command.substr(0, command.find('-'))));
      addUnlessKnown(ids, snapId(name, name));
      return ids;
    }
  }
  return ids;
}

std::vector<std::string> unitIds(std::string_view controlGroup) {
  constexpr std::string_view stem = "app-";
  std::vector<std::string> ids;
  for (std::string_view unit : split(controlGroup, '/')) {
    if (!dropStem(unit, stem)) continue;
    const bool isScope = drop(unit, ".scope");
    // The processes of an application that makes units of its own lie below its slice.
    if (!isScope && !drop(unit, ".service") && !drop(unit, ".slice")) continue;
    const std::size_t instance = unit.rfind('@');
    Parts parts = split(unit.substr(0, instance), '-');
    // A scope's name ends in a number of the launch.
    if (isScope && instance == std::string_view::npos && parts.size() > 1) parts.pop_back();
    ids.clear();  // an inner unit says more
    addUnlessKnown(ids, unescaped(parts.back()));
    for (std::size_t launcher = parts.size() - 1; launcher-- > 0;) {
      addUnlessKnown(ids, unescaped(joined(parts, launcher, parts.size(), '-')));
    }
  }
  return ids;
}

std::optional<std::string> scriptOf(const std::vector<std::string>& arguments) {
  std::optional<std::string> classes;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (replacesTheScript(argument)) return std::nullopt;
    if (argument.starts_with('/')) return argument;
    if (!argument.starts_with('-')) return classes;
    if (!takesAValue(argument)) continue;
    ++i;
    if (!isClassPath(argument) || i == arguments.size() || !arguments[i].starts_with('/')) continue;
    classes = arguments[i].substr(0, arguments[i].find(':'));
  }
  return std::nullopt;
}

std::optional<std::string> imageMountOf(std::string_view executable) {
  constexpr std::string_view stem = "/.mount_";
  const std::size_t mount = executable.find(stem);
  if (mount == std::string_view::npos) return std::nullopt;
  const std::size_t end = executable.find('/', mount + stem.size());
  if (end == std::string_view::npos || end == mount + stem.size()) return std::nullopt;
  return std::string(executable.substr(0, end));
}

std::vector<std::string_view> privateDirectoriesOf(std::string_view path) {
  constexpr std::array<std::string_view, 9> roots = {
      "/opt/",           "/usr/lib/",         "/usr/lib64/",         "/usr/libexec/",  "/usr/share/",
      "/usr/local/lib/", "/usr/local/share/", "/usr/local/libexec/", "/usr/games/lib/"};
  for (const std::string_view root : roots) {
    if (!path.starts_with(root)) continue;
    std::size_t shortest = root.size();
    // Libraries of one kind of processor have a directory of their own, and applications theirs within it.
    const std::string_view first = path.substr(root.size(), path.find('/', root.size()) - root.size());
    if (first.find("-linux-gnu") != std::string_view::npos) shortest += first.size() + 1;
    std::vector<std::string_view> directories;
    std::size_t end = path.rfind('/');
    while (end != std::string_view::npos && end > shortest) {
      directories.push_back(path.substr(0, end));
      end = path.rfind('/', end - 1);
    }
    return directories;
  }
  return {};
}

}  // namespace tarn
