// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/linux_application_rules.hpp"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <utility>

#include "platform/linux/app_identity/desktop_id_candidates.hpp"
#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/procfs_reader.hpp"
#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

constexpr std::size_t minPruneSize = 512;
constexpr std::size_t maxFileSize = 4096;  // bytes read from each file of a process

std::string processDirectory(const LinuxRoots& roots, std::int32_t pid) {
  return roots.proc + '/' + std::to_string(pid);
}

std::string copyOrEmpty(const std::string* text) {
  return text == nullptr ? std::string() : *text;
}

}  // namespace

LinuxApplicationRules::LinuxApplicationRules(LinuxRoots roots, ApplicationIndex index, ExecId execId,
                                             Clock clock)
    : roots_(std::move(roots)),
      index_(std::move(index)),
      execId_(std::move(execId)),
      clock_(std::move(clock)),
      pruneSize_(minPruneSize) {}

SharedText LinuxApplicationRules::applicationRoot(std::int32_t pid, const std::string& /*path*/) {
  const auto execId = execId_(pid);
  if (!execId) return {};
  const CachedRoot* const cached = cache_.find(pid);
  if (cached != nullptr && cached->execId == *execId) return cached->root;
  refreshIndex();
  SharedText root = findRoot(pid);
  prune();
  cache_[pid] = {*execId, root};
  return root;
}

void LinuxApplicationRules::refreshIndex() {
  // Many processes can be new in one sweep; desktop files rarely change.
  constexpr auto minInterval = std::chrono::seconds(2);
  const auto now = clock_();
  if (lastRefresh_ && now - *lastRefresh_ < minInterval) return;
  lastRefresh_ = now;
  if (index_.refresh()) cache_.clear();
}

void LinuxApplicationRules::prune() {
  if (cache_.size() < pruneSize_) return;
  cache_.eraseIf(
      [this](std::int32_t pid, const CachedRoot& cached) { return execId_(pid) != cached.execId; });
  pruneSize_ = std::max(minPruneSize, 2 * cache_.size());
}

std::string LinuxApplicationRules::findRoot(std::int32_t pid) const {
  const ProcessOrigin origin = readProcessOrigin(roots_, pid);
  // The path of a sandboxed executable belongs to another mount namespace, so it is not looked up.
  const auto sandbox = sandboxDesktopIds(origin.cgroup);
  if (!sandbox.empty()) return copyOrEmpty(findById(sandbox));
  if (const auto* file = findByProgram(origin.executable)) return *file;
  if (const auto* file = index_.byServiceExecutable(origin.executable)) return *file;
  if (isLauncher(lastPathComponent(origin.executable))) {
    const auto script = scriptPath(readArguments(roots_, pid));
    if (const auto* file = script ? findByProgram(*script) : nullptr) return *file;
  }
  if (const auto* file = findById(unitDesktopIds(origin.cgroup))) return *file;
  return findInAppImage(origin.executable);
}

const std::string* LinuxApplicationRules::findByProgram(const std::string& path) const {
  const auto* file = index_.byExecutable(path);
  return file != nullptr ? file : index_.byPrivateDirectory(path);
}

const std::string* LinuxApplicationRules::findById(const std::vector<std::string>& ids) const {
  for (const std::string& id : ids) {
    if (const auto* file = index_.byId(id)) return file;
  }
  return nullptr;
}

/// An AppImage has a desktop file in its root directory (AppImage Specification, "AppDir").
std::string LinuxApplicationRules::findInAppImage(const std::string& executable) const {
  const auto mount = appImageMount(executable);
  if (!mount) return {};
  constexpr std::size_t maxFiles = 10'000;
  for (const std::string& name : namesIn(roots_.root + *mount, maxFiles)) {
    if (name.ends_with(".desktop")) return *mount + '/' + name;
  }
  return {};
}

ProcessOrigin readProcessOrigin(const LinuxRoots& roots, std::int32_t pid) {
  const std::string directory = processDirectory(roots, pid);
  std::array<char, maxFileSize> buffer{};
  ProcessOrigin origin;
  origin.executable = readExecutablePath(AT_FDCWD, (directory + "/exe").c_str(), buffer);
  origin.cgroup = parseCgroupPath(readOnce(AT_FDCWD, (directory + "/cgroup").c_str(), buffer));
  return origin;
}

std::vector<std::string> readArguments(const LinuxRoots& roots, std::int32_t pid) {
  std::array<char, maxFileSize> buffer{};
  const std::string path = processDirectory(roots, pid) + "/cmdline";
  const std::string_view commandLine = readOnce(AT_FDCWD, path.c_str(), buffer);
  return parseArguments(commandLine, commandLine.size() < buffer.size());
}

}  // namespace tarn
