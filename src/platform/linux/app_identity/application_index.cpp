// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/application_index.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/app_identity/exec_line.hpp"
#include "platform/linux/app_identity/desktop_id_candidates.hpp"
#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"
#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view desktopEnding = ".desktop";
constexpr std::string_view serviceEnding = ".service";
constexpr std::size_t mostFiles = 10'000;

std::string joined(const std::string& one, char separator, std::string_view other) {
  std::string text = one;
  text += separator;
  text += other;
  return text;
}

/// The value of a key in a bus service's file; of other groups such files have none.
std::string valueOf(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    if (!line.starts_with(key)) continue;
    line.remove_prefix(key.size());
    if (line.starts_with('=')) return std::string(line.substr(1));
  }
  return {};
}

}  // namespace

ApplicationIndex::ApplicationIndex(LinuxRoots roots, std::vector<std::string> dataDirectories,
                                   std::vector<std::string> programDirectories)
    : roots_(std::move(roots)),
      dataDirectories_(std::move(dataDirectories)),
      programDirectories_(std::move(programDirectories)) {}

ApplicationIndex::DirectoryState ApplicationIndex::stateOf(const std::string& directory) {
  struct stat status {};
  if (stat(directory.c_str(), &status) != 0) return {};
  return {status.st_dev, status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

bool ApplicationIndex::refresh() {
  const bool isCurrent = isBuilt_ && std::all_of(stamps_.begin(), stamps_.end(), [](const Stamp& stamp) {
                           return stateOf(stamp.directory) == stamp.state;
                         });
  if (isCurrent) return false;
  isBuilt_ = false;  // and will not be when memory runs out on the way
  build();
  isBuilt_ = true;
  return true;
}

void ApplicationIndex::build() {
  stamps_.clear();
  files_.clear();
  knownIds_.clear();
  for (NameTable* names : {&byId_, &byExecutable_, &byServiceExecutable_, &byDirectory_, &byDirectoryName_})
    names->clear();
  for (const std::string& data : dataDirectories_) {
    // A link may lead to where there is no end of directories. That is its own data directory's loss alone.
    constexpr std::size_t mostDirectories = 500;
    directoryLimit_ = stamps_.size() + mostDirectories;
    addDirectory(roots_.root + data + "/applications", "", 0);
  }
  for (NameTable* names : {&byId_, &byExecutable_, &byDirectory_, &byDirectoryName_}) names->close();
  knownIds_ = {};
  for (const std::string& data : dataDirectories_) addServices(roots_.root + data + "/dbus-1/services");
  byServiceExecutable_.close();
  files_.shrink_to_fit();
}

void ApplicationIndex::addDirectory(const std::string& directory, const std::string& idPrefix, int depth) {
  constexpr int deepest = 4;
  const DirectoryState state = stateOf(directory);
  // A link may lead back: what is in a directory is known by the name that it has there first.
  const bool wasHere = std::any_of(stamps_.begin(), stamps_.end(), [&state](const Stamp& stamp) {
    return stamp.state != DirectoryState() && stamp.state.isSameDirectory(state);
  });
  if (wasHere || depth > deepest || stamps_.size() >= directoryLimit_) return;
  stamps_.push_back({directory, state});
  for (const std::string& name : namesIn(directory, mostFiles)) {
    const std::string path = joined(directory, '/', name);
    std::error_code error;
    if (name.ends_with(desktopEnding)) {
      addFile(path, idPrefix + name.substr(0, name.size() - desktopEnding.size()));
    } else if (fs::is_directory(path, error)) {
      addDirectory(path, joined(idPrefix + name, '-', {}), depth + 1);
    }
  }
}

void ApplicationIndex::addFile(const std::string& file, std::string id) {
  if (files_.size() >= mostFiles || knownIds_.contains(id)) return;
  const auto entry = readDesktopEntry(file);
  const auto number = static_cast<std::uint32_t>(files_.size());
  if (!entry) return;
  // Paths are told as the system has them, whatever stands before its root.
  files_.push_back(file.substr(roots_.root.size()));
  addExecutable(*entry, id, number);
  byId_.offer(id, number, 0);
  knownIds_.insert(std::move(id));
}

void ApplicationIndex::addExecutable(const DesktopEntry& entry, const std::string& id, std::uint32_t file) {
  const auto line = parseExecLine(entry.exec);
  if (!line || !entry.isListed || entry.isInTerminal) return;
  auto argumentCount = static_cast<std::uint32_t>(line->arguments.size());
  std::string program = line->program;
  if (runsOthers(lastPathComponent(program))) {
    // The script that an interpreter runs is the application; what a launcher runs is not to be seen here.
    if (line->arguments.empty() || !line->arguments.front().starts_with('/')) return;
    program = line->arguments.front();
    --argumentCount;
  }
  const std::string path = resolved(program);
  const std::string_view resolvedName = lastPathComponent(path);
  if (!path.empty() && !runsOthers(resolvedName)) {
    byExecutable_.offer(path, file, argumentCount);
    const auto directories = privateDirectoriesOf(path);
    if (!directories.empty()) byDirectory_.offer(directories.front(), file, argumentCount);
    byDirectoryName_.offer(resolvedName, file, argumentCount);
  }
  byDirectoryName_.offer(lastPathComponent(program), file, argumentCount);
  byDirectoryName_.offer(id, file, argumentCount);
}

void ApplicationIndex::addServices(const std::string& directory) {
  stamps_.push_back({directory, stateOf(directory)});
  for (const std::string& name : namesIn(directory, mostFiles)) {
    if (!name.ends_with(serviceEnding)) continue;
    const std::string text = readFile(joined(directory, '/', name));
    const auto application = byId_.find(valueOf(text, "Name"));
    if (!application) continue;
    const auto line = parseExecLine(valueOf(text, "Exec"));
    if (!line || runsOthers(lastPathComponent(line->program))) continue;
    const std::string path = resolved(line->program);
    if (!path.empty()) byServiceExecutable_.offer(path, *application, 0);
  }
}

std::string ApplicationIndex::resolved(const std::string& program) const {
  const auto resolve = [this](const std::string& path) {
    std::error_code error;
    const fs::path target = fs::canonical(roots_.root + path, error);
    if (error || !fs::is_regular_file(target, error)) return std::string();
    return target.string().substr(roots_.root.size());
  };
  if (program.starts_with('/')) return resolve(program);
  if (program.find('/') != std::string::npos) return {};
  for (const std::string& directory : programDirectories_) {
    std::string path = resolve(joined(directory, '/', program));
    if (!path.empty()) return path;
  }
  return {};
}

const std::string* ApplicationIndex::fileOf(const NameTable& names, std::string_view name) const {
  const auto number = names.find(name);
  return number ? &files_[*number] : nullptr;
}

const std::string* ApplicationIndex::byId(std::string_view id) const {
  return fileOf(byId_, id);
}

const std::string* ApplicationIndex::byExecutable(const std::string& path) const {
  return fileOf(byExecutable_, path);
}

const std::string* ApplicationIndex::byServiceExecutable(const std::string& path) const {
  return fileOf(byServiceExecutable_, path);
}

const std::string* ApplicationIndex::byPrivateDirectory(std::string_view path) const {
  const auto directories = privateDirectoriesOf(path);
  for (const std::string_view directory : directories) {
    if (const std::string* file = fileOf(byDirectory_, directory)) return file;
  }
  // Only the outermost directory is an application's own by its name.
  return directories.empty() ? nullptr : fileOf(byDirectoryName_, lastPathComponent(directories.back()));
}

}  // namespace tarn
