// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/linux_application_rules.hpp"

#include <algorithm>
#include <utility>

#include "platform/linux/app_identity/exec_line.hpp"
#include "platform/linux/app_identity/desktop_id_candidates.hpp"
#include "platform/linux/procfs/file_reading.hpp"
#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

constexpr std::size_t leastSizeToPrune = 512;

std::string valueOf(const std::string* path) {
  return path == nullptr ? std::string() : *path;
}

}  // namespace

LinuxApplicationRules::LinuxApplicationRules(LinuxRoots roots, ApplicationIndex index,
                                             Generation generationOf, Clock clock)
    : roots_(std::move(roots)),
      index_(std::move(index)),
      generationOf_(std::move(generationOf)),
      clock_(std::move(clock)),
      sizeToPrune_(leastSizeToPrune) {}

SharedText LinuxApplicationRules::applicationRoot(std::int32_t pid, const std::string& /*path*/) {
  // The path given may be that of the program before: a process that starts another one keeps its place in
  // whoever's memory that was.
  const auto generation = generationOf_(pid);
  if (!generation) return {};
  const Found* const known = found_.find(pid);
  if (known != nullptr && known->generation == *generation) return known->root;
  refreshIndex();
  SharedText root = find(pid, readProcessFacts(roots_, pid));
  forgetTheGone();
  found_[pid] = {*generation, root};
  return root;
}

void LinuxApplicationRules::refreshIndex() {
  // Many new processes come at once; the applications hardly ever change.
  constexpr auto oftenEnough = std::chrono::seconds(2);
  const auto now = clock_();
  if (lastRefresh_ && now - *lastRefresh_ < oftenEnough) return;
  lastRefresh_ = now;
  if (index_.refresh()) found_.clear();
}

void LinuxApplicationRules::forgetTheGone() {
  if (found_.size() < sizeToPrune_) return;
  found_.eraseIf(
      [this](std::int32_t pid, const Found& found) { return generationOf_(pid) != found.generation; });
  sizeToPrune_ = std::max(leastSizeToPrune, 2 * found_.size());
}

std::string LinuxApplicationRules::find(std::int32_t pid, const ProcessFacts& facts) const {
  // Paths within a sandbox mean nothing outside of it.
  const auto sandbox = sandboxIds(facts.controlGroup);
  if (!sandbox.empty()) return valueOf(byAnyId(sandbox));
  if (const auto* file = byProgram(facts.executable)) return *file;
  if (const auto* file = index_.byServiceExecutable(facts.executable)) return *file;
  if (runsOthers(lastPathComponent(facts.executable))) {
    const auto script = scriptOf(readArguments(roots_, pid));
    if (const auto* file = script ? byProgram(*script) : nullptr) return *file;
  }
  if (const auto* file = byAnyId(unitIds(facts.controlGroup))) return *file;
  return inImage(facts.executable);
}

const std::string* LinuxApplicationRules::byProgram(const std::string& path) const {
  const auto* file = index_.byExecutable(path);
  return file != nullptr ? file : index_.byPrivateDirectory(path);
}

const std::string* LinuxApplicationRules::byAnyId(const std::vector<std::string>& ids) const {
  for (const std::string& id : ids) {
    if (const auto* file = index_.byId(id)) return file;
  }
  return nullptr;
}

std::string LinuxApplicationRules::inImage(const std::string& executable) const {
  const auto mount = imageMountOf(executable);
  if (!mount) return {};
  constexpr std::size_t mostFiles = 10'000;
  for (const std::string& name : namesIn(roots_.root + *mount, mostFiles)) {
    if (name.ends_with(".desktop")) return *mount + '/' + name;
  }
  return {};
}

}  // namespace tarn
