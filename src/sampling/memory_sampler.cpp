// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/memory_sampler.hpp"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "sampling/bundle_path.hpp"
#include "sampling/checked_arithmetic.hpp"

namespace tarn {

namespace {

constexpr double nanosecondsPerSecond = 1'000'000'000.0;
constexpr std::size_t ancestorSteps = 8;

constexpr auto largestFootprintFirst = [](const auto& left, const auto& right) {
  return left.footprint > right.footprint;
};

}  // namespace

MemorySampler::MemorySampler(SamplerPort port) : port_(std::move(port)) {}

MemorySnapshot MemorySampler::sample() {
  const double start = port_.uptime();
  const std::vector<std::int32_t> pids = port_.processes->allPIDs();
  beginSweep(start, pids.size());
  for (const std::int32_t pid : pids) measure(pid);
  endSweep(start);

  MemorySnapshot snapshot;
  tallyGroups();
  rankGroups();
  snapshot.groups = makeGroups();
  std::swap(smoothedProcessCPU_, sweep_.smoothedCPU);
  forgetVanishedApplications(snapshot.groups);
  snapshot.sweepDuration = port_.uptime() - start;
  // Outside the measured duration: the system's figures are not part of the sweep over processes.
  snapshot.system = port_.memory->read();
  return snapshot;
}

void MemorySampler::beginSweep(double uptime, std::size_t processCount) {
  sweep_.interval.reset();
  if (previousUptime_ && uptime > *previousUptime_) {
    sweep_.interval = (uptime - *previousUptime_) * nanosecondsPerSecond;
  }
  sweep_.live.clear();
  sweep_.live.reserve(processCount);
  sweep_.cpu.clear();
  sweep_.cpu.reserve(processCount);
  sweep_.samples.clear();
  sweep_.samples.reserve(processCount);
}

void MemorySampler::measure(std::int32_t pid) {
  // A process table that changes while it is read may name a process twice.
  const auto [ancestor, isFirst] = sweep_.live.tryEmplace(pid);
  if (!isFirst) return;
  const std::optional<BsdInfo> info = port_.processes->bsdInfo(pid);
  const Executable& program = executable(pid, info);
  *ancestor = {.ppid = info ? info->ppid : 0, .executable = &program, .root = program.bundle};

  const std::optional<ProcessUsage> usage = port_.processes->usage(pid);
  if (!usage) return;
  ProcessSample sample{.pid = pid, .footprint = usage->footprint};
  if (info) {
    const CachedCPU current{info->startSec, usage->cpuTime};
    sample.ppid = info->ppid;
    sample.uid = info->uid;
    sample.cpuPercent = cpuPercent(pid, current);
    sweep_.cpu[pid] = current;
  }
  sample.name = program.path.empty() ? nameWithoutPath(pid) : program.name;
  sample.path = program.path;
  sweep_.samples.push_back(std::move(sample));
}

const MemorySampler::Executable& MemorySampler::executable(std::int32_t pid,
                                                           const std::optional<BsdInfo>& info) {
  // Without a start time nothing says whether a cached path is still this process's.
  if (!info) return executableAt(port_.processes->path(pid));
  CachedPath& cached = pathCache_[pid];
  // There is none in a new one, nor where memory ran out before it was known.
  if (cached.executable == nullptr || cached.startSec != info->startSec) {
    cached = {info->startSec, &executableAt(port_.processes->path(pid))};
  }
  return *cached.executable;
}

const MemorySampler::Executable& MemorySampler::executableAt(std::string_view path) {
  const auto cached = bundleRootCache_.find(path);
  if (cached != bundleRootCache_.end()) return cached->second;
  Executable executable{std::string(path), std::string(lastPathComponent(path)),
                        outermostBundle(path).value_or("")};
  const std::string_view key = executable.path;
  return bundleRootCache_.emplace(key, std::move(executable)).first->second;
}

double MemorySampler::cpuPercent(std::int32_t pid, const CachedCPU& current) const {
  const CachedCPU* const before = previousCPU_.find(pid);
  if (!sweep_.interval || before == nullptr) return 0;
  if (before->startSec != current.startSec || current.cpuTime < before->cpuTime) return 0;
  return static_cast<double>(current.cpuTime - before->cpuTime) / *sweep_.interval * 100;
}

SharedText MemorySampler::nameWithoutPath(std::int32_t pid) {
  SharedText name = port_.processes->processName(pid);
  return name.empty() ? SharedText("PID " + std::to_string(pid)) : name;
}

void MemorySampler::endSweep(double uptime) {
  std::swap(previousCPU_, sweep_.cpu);
  previousUptime_ = uptime;
  if (sweep_.live.size() < pathCache_.size()) {
    pathCache_.eraseIf([this](std::int32_t pid, const auto&) { return !sweep_.live.contains(pid); });
  }
}

void MemorySampler::tallyGroups() {
  sweep_.tallies.clear();
  sweep_.tallyOfSample.clear();
  sweep_.smoothedCPU.clear();
  std::unordered_map<std::string_view, std::size_t> tallyOfRoot;
  for (std::size_t i = 0; i < sweep_.samples.size(); ++i) {
    const ProcessSample& sample = sweep_.samples[i];
    SharedText root = ownRoot(sample.pid, *sweep_.live.find(sample.pid));
    if (root.empty()) root = ancestorBundleRoot(sample.pid);
    std::size_t place = sweep_.tallies.size();
    // A root's text lasts: whoever has it keeps it until the next sweep.
    if (!root.empty()) place = tallyOfRoot.try_emplace(root.string(), place).first->second;
    if (place == sweep_.tallies.size()) sweep_.tallies.push_back({.root = std::move(root), .firstSample = i});
    Tally& tally = sweep_.tallies[place];
    ++tally.count;
    tally.footprint = checkedAdd(tally.footprint, sample.footprint);
    tally.rawCPU += sample.cpuPercent;
    sweep_.tallyOfSample.push_back(place);
  }
  sweep_.applications = tallyOfRoot.size();
}

void MemorySampler::rankGroups() {
  // What is sorted are places: tallies are large to move.
  sweep_.ranking.resize(sweep_.tallies.size());
  std::iota(sweep_.ranking.begin(), sweep_.ranking.end(), std::size_t{0});
  std::sort(sweep_.ranking.begin(), sweep_.ranking.end(), [this](std::size_t left, std::size_t right) {
    const std::uint64_t one = sweep_.tallies[left].footprint;
    const std::uint64_t other = sweep_.tallies[right].footprint;
    return one != other ? one > other : left < right;
  });
}

std::vector<AppGroup> MemorySampler::makeGroups() {
  std::vector<AppGroup> groups;
  groups.reserve(sweep_.tallies.size());
  for (const std::size_t ranked : sweep_.ranking) {
    sweep_.tallies[ranked].place = groups.size();
    groups.push_back(makeGroup(sweep_.tallies[ranked]));
  }
  for (std::size_t i = 0; i < sweep_.samples.size(); ++i) {
    const Tally& tally = sweep_.tallies[sweep_.tallyOfSample[i]];
    groups[tally.place].processes.push_back(std::move(sweep_.samples[i]));
  }
  for (AppGroup& group : groups) {
    if (group.processes.size() < 2) continue;
    std::stable_sort(group.processes.begin(), group.processes.end(), largestFootprintFirst);
  }
  return groups;
}

void MemorySampler::forgetVanishedApplications(const std::vector<AppGroup>& groups) {
  if (sweep_.applications == smoothedCPU_.size()) return;
  std::unordered_set<std::string_view> roots;
  for (const AppGroup& group : groups) roots.insert(group.id);
  std::erase_if(smoothedCPU_, [&](const auto& remembered) { return !roots.contains(remembered.first); });
}

AppGroup MemorySampler::makeGroup(const Tally& tally) {
  const ProcessSample& first = sweep_.samples[tally.firstSample];
  AppGroup group{.id = tally.root.string(), .name = first.name, .footprint = tally.footprint};
  if (tally.root.empty()) {
    group.id = "pid:" + std::to_string(first.pid);
    group.cpuPercent = smoothedOfProcess(first.pid, tally.rawCPU);
  } else {
    group.name = displayNameText(group.id);
    group.bundlePath = group.id;
    group.cpuPercent = smoothedOfApplication(group.id, tally.rawCPU);
  }
  group.processes.reserve(tally.count);
  return group;
}

double MemorySampler::smoothed(double before, double raw) {
  return before + (raw - before) * cpuSmoothing;
}

double MemorySampler::smoothedOfApplication(const std::string& root, double raw) {
  const auto [remembered, isNew] = smoothedCPU_.try_emplace(root, raw);
  if (!isNew) remembered->second = smoothed(remembered->second, raw);
  return remembered->second;
}

double MemorySampler::smoothedOfProcess(std::int32_t pid, double raw) {
  const double* const remembered = smoothedProcessCPU_.find(pid);
  return sweep_.smoothedCPU[pid] = remembered ? smoothed(*remembered, raw) : raw;
}

const SharedText& MemorySampler::ownRoot(std::int32_t pid, Ancestor& process) {
  if (process.root.empty() && !process.isAsked && port_.applicationRules) {
    process.root = port_.applicationRules->applicationRoot(pid, process.executable->path.string());
  }
  process.isAsked = true;
  return process.root;
}

SharedText MemorySampler::ancestorBundleRoot(std::int32_t startPID) {
  std::array<std::int32_t, ancestorSteps> visited{};
  Ancestor* process = sweep_.live.find(startPID);
  for (std::size_t step = 0; step < visited.size() && process != nullptr; ++step) {
    const std::int32_t parent = process->ppid;
    // Pids 0 and 1 own no application; a parent met before means the table changed while it was read.
    if (parent < 2 || std::find(visited.begin(), visited.end(), parent) != visited.end()) break;
    visited[step] = parent;
    process = sweep_.live.find(parent);
    if (process != nullptr && !ownRoot(parent, *process).empty()) return process->root;
  }
  return {};
}

std::optional<std::string> MemorySampler::bundleRoot(const std::string& forPath) {
  const SharedText& root = executableAt(forPath).bundle;
  return root.empty() ? std::nullopt : std::optional(root.string());
}

std::string MemorySampler::displayName(const std::string& forBundleRoot) {
  return displayNameText(forBundleRoot).string();
}

const SharedText& MemorySampler::displayNameText(const std::string& bundleRoot) {
  const auto cached = displayNameCache_.find(bundleRoot);
  if (cached != displayNameCache_.end()) return cached->second;

  InformationDictionary information;
  if (port_.bundleInformation) information = port_.bundleInformation(bundleRoot);
  std::string name(deletingPathExtension(lastPathComponent(bundleRoot)));
  for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
    const auto entry = information.find(key);
    if (entry == information.end() || entry->second.empty()) continue;
    name = entry->second;
    break;
  }
  return displayNameCache_.emplace(bundleRoot, std::move(name)).first->second;
}

}  // namespace tarn
