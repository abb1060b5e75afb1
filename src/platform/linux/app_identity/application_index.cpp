// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/application_index.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/app_identity/desktop_id_candidates.hpp"
#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"
#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view desktopSuffix = ".desktop";
constexpr std::string_view serviceSuffix = ".service";
constexpr std::size_t maxFiles = 10'000;

std::string join(const std::string& left, char separator, std::string_view right) {
  std::string text = left;
  text += separator;
  text += right;
  return text;
}

/// The value of a key in a D-Bus service file. Such files have one group only, "[D-BUS Service]" (D-Bus
/// Specification, "Message Bus Starting Services").
std::string serviceValue(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    if (!line.starts_with(key)) continue;
    line.remove_prefix(key.size());
    if (line.starts_with('=')) return std::string(line.substr(1));
  }
  return {};
}

}  // namespace

void NameTable::clear() {
  names_.clear();
  entries_.clear();
}

void NameTable::add(std::string_view name, std::uint32_t number, std::uint32_t rank) {
  const auto offset = static_cast<std::uint32_t>(names_.size());
  entries_.push_back({offset, static_cast<std::uint32_t>(name.size()), number, rank});
  names_ += name;
}

void NameTable::finish() {
  std::stable_sort(entries_.begin(), entries_.end(), [this](const Entry& left, const Entry& right) {
    const int order = nameOf(left).compare(nameOf(right));
    return order != 0 ? order < 0 : left.rank < right.rank;
  });
  const auto end =
      std::unique(entries_.begin(), entries_.end(),
                  [this](const Entry& left, const Entry& right) { return nameOf(left) == nameOf(right); });
  entries_.erase(end, entries_.end());
  entries_.shrink_to_fit();
  names_.shrink_to_fit();
}

std::optional<std::uint32_t> NameTable::find(std::string_view name) const {
  const auto entry =
      std::lower_bound(entries_.begin(), entries_.end(), name,
                       [this](const Entry& left, std::string_view right) { return nameOf(left) < right; });
  if (entry == entries_.end() || nameOf(*entry) != name) return std::nullopt;
  return entry->number;
}

ApplicationIndex::ApplicationIndex(LinuxRoots roots, std::vector<std::string> dataDirectories,
                                   std::vector<std::string> programDirectories)
    : roots_(std::move(roots)),
      dataDirectories_(std::move(dataDirectories)),
      programDirectories_(std::move(programDirectories)) {}

ApplicationIndex::DirectoryState ApplicationIndex::readState(const std::string& directory) {
  struct stat status {};
  if (stat(directory.c_str(), &status) != 0) return {};
  return {status.st_dev, status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

bool ApplicationIndex::refresh() {
  const bool isCurrent = isBuilt_ && std::all_of(watchedDirectories_.begin(), watchedDirectories_.end(),
                                                 [](const WatchedDirectory& directory) {
                                                   return readState(directory.path) == directory.state;
                                                 });
  if (isCurrent) return false;
  isBuilt_ = false;  // stays false if build() throws std::bad_alloc
  build();
  isBuilt_ = true;
  return true;
}

void ApplicationIndex::build() {
  watchedDirectories_.clear();
  files_.clear();
  knownIds_.clear();
  for (NameTable* names : {&byId_, &byExecutable_, &byServiceExecutable_, &byDirectory_, &byDirectoryName_})
    names->clear();
  for (const std::string& data : dataDirectories_) {
    // A symbolic link can lead to a large tree. The limit applies to each data directory separately, so that
    // the index of the others stays complete.
    constexpr std::size_t maxDirectories = 500;
    directoryLimit_ = watchedDirectories_.size() + maxDirectories;
    addDirectory(roots_.root + data + "/applications", "", 0);
  }
  for (NameTable* names : {&byId_, &byExecutable_, &byDirectory_, &byDirectoryName_}) names->finish();
  knownIds_ = {};
  for (const std::string& data : dataDirectories_) addServices(roots_.root + data + "/dbus-1/services");
  byServiceExecutable_.finish();
  files_.shrink_to_fit();
}

/// The desktop id of "applications/kde/konsole.desktop" is "kde-konsole" (Desktop Entry Specification,
/// "Desktop File ID").
void ApplicationIndex::addDirectory(const std::string& directory, const std::string& idPrefix, int depth) {
  constexpr int maxDepth = 4;
  const DirectoryState state = readState(directory);
  // Symbolic links can form a cycle: a directory is read only under the first name that leads to it.
  const bool isVisited = std::any_of(
      watchedDirectories_.begin(), watchedDirectories_.end(), [&state](const WatchedDirectory& visited) {
        return visited.state != DirectoryState() && visited.state.isSameDirectory(state);
      });
  if (isVisited || depth > maxDepth || watchedDirectories_.size() >= directoryLimit_) return;
  watchedDirectories_.push_back({directory, state});
  for (const std::string& name : namesIn(directory, maxFiles)) {
    const std::string path = join(directory, '/', name);
    std::error_code error;
    if (name.ends_with(desktopSuffix)) {
      addFile(path, idPrefix + name.substr(0, name.size() - desktopSuffix.size()));
    } else if (fs::is_directory(path, error)) {
      addDirectory(path, join(idPrefix + name, '-', {}), depth + 1);
    }
  }
}

void ApplicationIndex::addFile(const std::string& path, std::string id) {
  if (files_.size() >= maxFiles || knownIds_.contains(id)) return;
  const auto entry = readDesktopEntry(path);
  const auto fileIndex = static_cast<std::uint32_t>(files_.size());
  if (!entry) return;
  files_.push_back(path.substr(roots_.root.size()));
  addExecutable(*entry, id, fileIndex);
  byId_.add(id, fileIndex, 0);
  knownIds_.insert(std::move(id));
}

void ApplicationIndex::addExecutable(const DesktopEntry& entry, const std::string& id,
                                     std::uint32_t fileIndex) {
  const auto command = parseExecKey(entry.exec);
  if (!command || !entry.isListed || entry.runsInTerminal) return;
  auto argumentCount = static_cast<std::uint32_t>(command->arguments.size());
  std::string program = command->program;
  if (isLauncher(lastPathComponent(program))) {
    // An interpreter's script identifies the application. The executable that a launcher starts is unknown.
    if (command->arguments.empty() || !command->arguments.front().starts_with('/')) return;
    program = command->arguments.front();
    --argumentCount;
  }
  const std::string path = resolveProgram(program);
  const std::string_view resolvedName = lastPathComponent(path);
  if (!path.empty() && !isLauncher(resolvedName)) {
    byExecutable_.add(path, fileIndex, argumentCount);
    const auto directories = privateDirectories(path);
    if (!directories.empty()) byDirectory_.add(directories.front(), fileIndex, argumentCount);
    byDirectoryName_.add(resolvedName, fileIndex, argumentCount);
  }
  byDirectoryName_.add(lastPathComponent(program), fileIndex, argumentCount);
  byDirectoryName_.add(id, fileIndex, argumentCount);
}

/// A D-Bus activatable application has a service of the same name as its desktop id (Desktop Entry
/// Specification, "D-Bus Activation").
void ApplicationIndex::addServices(const std::string& directory) {
  watchedDirectories_.push_back({directory, readState(directory)});
  for (const std::string& name : namesIn(directory, maxFiles)) {
    if (!name.ends_with(serviceSuffix)) continue;
    const std::string text = readFile(join(directory, '/', name));
    const auto fileIndex = byId_.find(serviceValue(text, "Name"));
    if (!fileIndex) continue;
    const auto command = parseExecKey(serviceValue(text, "Exec"));
    if (!command || isLauncher(lastPathComponent(command->program))) continue;
    const std::string path = resolveProgram(command->program);
    if (!path.empty()) byServiceExecutable_.add(path, *fileIndex, 0);
  }
}

/// The file that a program name leads to, without symbolic links; empty if there is none.
std::string ApplicationIndex::resolveProgram(const std::string& program) const {
  const auto resolve = [this](const std::string& path) {
    std::error_code error;
    const fs::path target = fs::canonical(roots_.root + path, error);
    if (error || !fs::is_regular_file(target, error)) return std::string();
    return target.string().substr(roots_.root.size());
  };
  if (program.starts_with('/')) return resolve(program);
  if (program.find('/') != std::string::npos) return {};
  for (const std::string& directory : programDirectories_) {
    std::string path = resolve(join(directory, '/', program));
    if (!path.empty()) return path;
  }
  return {};
}

const std::string* ApplicationIndex::findFile(const NameTable& names, std::string_view name) const {
  const auto fileIndex = names.find(name);
  return fileIndex ? &files_[*fileIndex] : nullptr;
}

const std::string* ApplicationIndex::byId(std::string_view id) const {
  return findFile(byId_, id);
}

const std::string* ApplicationIndex::byExecutable(const std::string& path) const {
  return findFile(byExecutable_, path);
}

const std::string* ApplicationIndex::byServiceExecutable(const std::string& path) const {
  return findFile(byServiceExecutable_, path);
}

const std::string* ApplicationIndex::byPrivateDirectory(std::string_view path) const {
  const auto directories = privateDirectories(path);
  for (const std::string_view directory : directories) {
    if (const std::string* file = findFile(byDirectory_, directory)) return file;
  }
  // Only the name of the outermost directory is compared: "/usr/lib/firefox", not "/usr/lib/other/firefox".
  return directories.empty() ? nullptr : findFile(byDirectoryName_, lastPathComponent(directories.back()));
}

}  // namespace tarn
