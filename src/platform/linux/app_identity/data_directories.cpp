// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/data_directories.hpp"

#include <algorithm>
#include <string_view>

namespace tarn {

namespace {

std::string withoutSlashes(std::string directory) {
  while (directory.size() > 1 && directory.ends_with('/')) directory.pop_back();
  return directory;
}

void add(std::vector<std::string>& directories, const std::string& given) {
  std::string directory = withoutSlashes(given);
  // A relative one would mean another directory in each process.
  if (!directory.starts_with('/')) return;
  if (std::find(directories.begin(), directories.end(), directory) == directories.end())
    directories.push_back(std::move(directory));
}

void addList(std::vector<std::string>& directories, std::string_view list) {
  while (!list.empty()) {
    const std::string_view directory = list.substr(0, list.find(':'));
    list.remove_prefix(std::min(list.size(), directory.size() + 1));
    add(directories, std::string(directory));
  }
}

}  // namespace

std::vector<std::string> dataDirectories(const Environment& environment) {
  const std::string home = environment("HOME");
  const std::string own = environment("XDG_DATA_HOME");
  const std::string shared = environment("XDG_DATA_DIRS");
  const std::string user = own.empty() && !home.empty() ? home + "/.local/share" : withoutSlashes(own);
  std::vector<std::string> directories;
  add(directories, user);
  addList(directories, shared.empty() ? "/usr/local/share:/usr/share" : shared);
  // Where the session's variables do not mention them.
  if (!user.empty()) add(directories, user + "/flatpak/exports/share");
  add(directories, "/var/lib/flatpak/exports/share");
  add(directories, "/var/lib/snapd/desktop");
  return directories;
}

std::vector<std::string> programDirectories(const Environment& environment) {
  std::vector<std::string> directories;
  addList(directories, environment("PATH"));
  // Programs of desktop files may lie where a bare session does not look.
  addList(directories, "/usr/local/bin:/usr/bin:/bin:/usr/games:/snap/bin");
  return directories;
}

}  // namespace tarn
