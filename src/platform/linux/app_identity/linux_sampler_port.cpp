// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/linux_sampler_port.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/linux/app_identity/application_information.hpp"
#include "platform/linux/procfs/sleeping_process_cache.hpp"
#include "platform/linux/procfs/system_memory.hpp"

namespace tarn {

namespace {

std::string withoutTrailingSlashes(std::string directory) {
  while (directory.size() > 1 && directory.ends_with('/')) directory.pop_back();
  return directory;
}

/// Adds an absolute directory that is not in the list yet.
void addDirectory(std::vector<std::string>& directories, const std::string& path) {
  std::string directory = withoutTrailingSlashes(path);
  if (!directory.starts_with('/')) return;
  if (std::find(directories.begin(), directories.end(), directory) == directories.end())
    directories.push_back(std::move(directory));
}

/// Adds the directories of a list that is separated by colons.
void addDirectories(std::vector<std::string>& directories, std::string_view list) {
  while (!list.empty()) {
    const std::string_view directory = list.substr(0, list.find(':'));
    list.remove_prefix(std::min(list.size(), directory.size() + 1));
    addDirectory(directories, std::string(directory));
  }
}

}  // namespace

std::string environmentVariable(const char* variable) {
  const char* const value = std::getenv(variable);
  return value == nullptr ? std::string() : std::string(value);
}

SamplerPort makeLinuxSamplerPort(const LinuxRoots& roots, const Environment& environment,
                                 SamplerClocks clocks) {
  const auto processes = std::make_shared<SleepingProcessCache>(
      clocks.processes ? ProcfsReader(roots, std::move(clocks.processes)) : ProcfsReader(roots));
  SamplerPort port;
  port.processes = processes;
  port.applicationRules = std::make_unique<LinuxApplicationRules>(
      roots, ApplicationIndex(roots, dataDirectories(environment), programDirectories(environment)),
      [processes](std::int32_t pid) { return processes->execId(pid); }, std::move(clocks.applications));
  port.memory = std::make_unique<LinuxSystemMemoryReader>(roots);
  port.uptime = std::move(clocks.uptime);
  port.bundleInformation = [roots](const std::string& path) { return applicationInformation(roots, path); };
  return port;
}

std::vector<std::string> dataDirectories(const Environment& environment) {
  const std::string home = environment("HOME");
  const std::string dataHome = environment("XDG_DATA_HOME");
  const std::string dataDirs = environment("XDG_DATA_DIRS");
  const std::string user =
      dataHome.empty() && !home.empty() ? home + "/.local/share" : withoutTrailingSlashes(dataHome);
  std::vector<std::string> directories;
  addDirectory(directories, user);
  addDirectories(directories, dataDirs.empty() ? "/usr/local/share:/usr/share" : dataDirs);
  // XDG_DATA_DIRS contains these only in sessions that flatpak and snapd have set up.
  if (!user.empty()) addDirectory(directories, user + "/flatpak/exports/share");
  addDirectory(directories, "/var/lib/flatpak/exports/share");
  addDirectory(directories, "/var/lib/snapd/desktop");
  return directories;
}

std::vector<std::string> programDirectories(const Environment& environment) {
  std::vector<std::string> directories;
  addDirectories(directories, environment("PATH"));
  addDirectories(directories, "/usr/local/bin:/usr/bin:/bin:/usr/games:/snap/bin");
  return directories;
}

}  // namespace tarn
