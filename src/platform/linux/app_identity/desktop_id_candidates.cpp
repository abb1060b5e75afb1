// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/desktop_id_candidates.hpp"

#include <algorithm>
#include <array>

#include "platform/linux/procfs/text_scan.hpp"

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

std::string join(const Parts& parts, std::size_t begin, std::size_t end, char separator) {
  std::string text;
  for (std::size_t i = begin; i < end; ++i) {
    if (i > begin) text += separator;
    text += parts[i];
  }
  return text;
}

/// Decodes the "\xNN" escapes of systemd unit names ("\x2d" for a hyphen), see systemd-escape(1).
std::string unescapeUnitName(std::string_view text) {
  constexpr int hexadecimal = 16;
  return withoutEscapes(text, "\\x", 2, hexadecimal);
}

/// Returns whether `text` ended with `suffix`.
bool removeSuffix(std::string_view& text, std::string_view suffix) {
  if (!text.ends_with(suffix)) return false;
  text.remove_suffix(suffix.size());
  return true;
}

/// Returns whether `text` began with `prefix`.
bool removePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

void addOnce(std::vector<std::string>& ids, std::string id) {
  if (!id.empty() && std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(std::move(id));
}

/// snapd installs the desktop file of a snap's application as SNAP_APP.desktop.
std::string snapDesktopId(std::string snap, std::string_view application) {
  snap += '_';
  snap += application;
  return snap;
}

/// `unit` is a unit name without the prefix "snap." and without its suffix.
std::vector<std::string> snapDesktopIds(std::string_view unit) {
  const Parts parts = split(unit, '.');
  const std::string snap = unescapeUnitName(parts.front());
  const std::string application = parts.size() == 1 ? snap : unescapeUnitName(parts[1]);
  std::vector<std::string> ids;
  addOnce(ids, snapDesktopId(snap, application));
  addOnce(ids, snapDesktopId(snap, application.substr(0, application.find('-'))));
  addOnce(ids, snapDesktopId(snap, snap));
  return ids;
}

bool isClassPathOption(std::string_view option) {
  return option == "-cp" || option == "-classpath" || option == "--class-path";
}

bool hasValue(std::string_view option) {
  constexpr std::array<std::string_view, 4> options = {"-W", "-X", "-I", "-r"};
  return isClassPathOption(option) || std::find(options.begin(), options.end(), option) != options.end();
}

/// Options that replace the script: code on the command line, the name of a module, standard input.
bool replacesScript(std::string_view option) {
  return option == "-c" || option == "-e" || option == "-m" || option == "-";
}

}  // namespace

/// Each line is "HIERARCHY:CONTROLLERS:PATH", see cgroups(7). For cgroup v2 it is "0::PATH". On hybrid
/// systems systemd tracks processes in the version 1 hierarchy "name=systemd", and the version 2 path may be
/// "/".
std::string parseCgroupPath(std::string_view text) {
  std::string systemdPath;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    constexpr std::string_view version2 = "0::";
    constexpr std::string_view systemd = ":name=systemd:";
    if (line.starts_with(version2) && line != "0::/") return std::string(line.substr(version2.size()));
    const std::size_t position = line.find(systemd);
    if (position != std::string_view::npos) systemdPath = line.substr(position + systemd.size());
  }
  return systemdPath;
}

/// Arguments are separated by zero bytes, see proc_pid_cmdline(5).
std::vector<std::string> parseArguments(std::string_view text, bool isComplete) {
  constexpr std::size_t maxArguments = 12;
  std::vector<std::string> arguments;
  while (!text.empty() && arguments.size() < maxArguments) {
    const std::size_t end = text.find('\0');
    if (end == std::string_view::npos && !isComplete) break;
    arguments.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return arguments;
}

/// Flatpak: "app-flatpak-ID-PID.scope", where ID is the `name` of /.flatpak-info and the desktop id.
/// snapd: "snap.SNAP.APP-UUID.scope", in older versions "snap.SNAP.APP.UUID.scope", and for services
/// "snap.SNAP.APP.service". APP itself may contain hyphens.
std::vector<std::string> sandboxDesktopIds(std::string_view cgroupPath) {
  for (std::string_view unit : split(cgroupPath, '/')) {
    if (removePrefix(unit, "app-flatpak-") && removeSuffix(unit, ".scope")) {
      std::vector<std::string> ids;
      addOnce(ids, unescapeUnitName(unit.substr(0, unit.rfind('-'))));
      return ids;
    }
    if (removePrefix(unit, "snap.") && (removeSuffix(unit, ".scope") || removeSuffix(unit, ".service")))
      return snapDesktopIds(unit);
  }
  return {};
}

/// The systemd documentation "Desktop Environments" (https://systemd.io/DESKTOP_ENVIRONMENTS) defines the
/// names "app[-LAUNCHER]-ID[@RANDOM].service", "app[-LAUNCHER]-ID-RANDOM.scope" and
/// "app[-LAUNCHER]-ID.slice". Hyphens within LAUNCHER and ID should be escaped, but some launchers do not
/// escape them, so any hyphen may separate LAUNCHER and ID.
std::vector<std::string> unitDesktopIds(std::string_view cgroupPath) {
  std::vector<std::string> ids;
  for (std::string_view unit : split(cgroupPath, '/')) {
    if (!removePrefix(unit, "app-")) continue;
    const bool isScope = removeSuffix(unit, ".scope");
    if (!isScope && !removeSuffix(unit, ".service") && !removeSuffix(unit, ".slice")) continue;
    const std::size_t instance = unit.rfind('@');
    Parts parts = split(unit.substr(0, instance), '-');
    if (isScope && instance == std::string_view::npos && parts.size() > 1) parts.pop_back();  // RANDOM
    ids.clear();  // the innermost unit decides
    addOnce(ids, unescapeUnitName(parts.back()));
    for (std::size_t begin = parts.size() - 1; begin-- > 0;) {
      addOnce(ids, unescapeUnitName(join(parts, begin, parts.size(), '-')));
    }
  }
  return ids;
}

std::optional<std::string> scriptPath(const std::vector<std::string>& arguments) {
  std::optional<std::string> classPath;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (replacesScript(argument)) return std::nullopt;
    if (argument.starts_with('/')) return argument;
    if (!argument.starts_with('-')) return classPath;
    if (!hasValue(argument)) continue;
    ++i;
    if (!isClassPathOption(argument) || i == arguments.size() || !arguments[i].starts_with('/')) continue;
    classPath = arguments[i].substr(0, arguments[i].find(':'));
  }
  return std::nullopt;
}

/// The AppImage runtime mounts an image at "$TMPDIR/.mount_NAMEXXXXXX": the first letters of the file's name
/// and six random characters.
std::optional<std::string> appImageMount(std::string_view executable) {
  constexpr std::string_view prefix = "/.mount_";
  const std::size_t mount = executable.find(prefix);
  if (mount == std::string_view::npos) return std::nullopt;
  const std::size_t end = executable.find('/', mount + prefix.size());
  if (end == std::string_view::npos || end == mount + prefix.size()) return std::nullopt;
  return std::string(executable.substr(0, end));
}

std::vector<std::string_view> privateDirectories(std::string_view path) {
  constexpr std::array<std::string_view, 9> roots = {
      "/opt/",           "/usr/lib/",         "/usr/lib64/",         "/usr/libexec/",  "/usr/share/",
      "/usr/local/lib/", "/usr/local/share/", "/usr/local/libexec/", "/usr/games/lib/"};
  for (const std::string_view root : roots) {
    if (!path.starts_with(root)) continue;
    std::size_t rootLength = root.size();
    // "/usr/lib/x86_64-linux-gnu" (Debian's multiarch directories) is a root, too.
    const std::string_view first = path.substr(rootLength, path.find('/', rootLength) - rootLength);
    if (first.find("-linux-gnu") != std::string_view::npos) rootLength += first.size() + 1;
    std::vector<std::string_view> directories;
    std::size_t end = path.rfind('/');
    while (end != std::string_view::npos && end > rootLength) {
      directories.push_back(path.substr(0, end));
      end = path.rfind('/', end - 1);
    }
    return directories;
  }
  return {};
}

}  // namespace tarn
