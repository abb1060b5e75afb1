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
constexpr std::size_t maxAncestorSteps = 8;

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
  accumulateGroups();
  rankGroups();
  snapshot.groups = makeGroups();
  std::swap(smoothedProcessCPU_, sweep_.smoothedCPU);
  pruneSmoothedCPU(snapshot.groups);
  // The duration covers the sweep over processes, not the system-wide figures.
  snapshot.sweepDuration = port_.uptime() - start;
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
  // A process table that changes while it is read may list a pid twice.
  const auto [ancestor, isFirst] = sweep_.live.tryEmplace(pid);
  if (!isFirst) return;
  const std::optional<BsdInfo> info = port_.processes->bsdInfo(pid);
  const Executable& executable = executableOf(pid, info);
  *ancestor = {.ppid = info ? info->ppid : 0, .executable = &executable, .root = executable.bundle};

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
  sample.name = executable.path.empty() ? nameWithoutPath(pid) : executable.name;
  sample.path = executable.path;
  sweep_.samples.push_back(std::move(sample));
}

const MemorySampler::Executable& MemorySampler::executableOf(std::int32_t pid,
                                                             const std::optional<BsdInfo>& info) {
  // The start time validates the cached path. Without it the path is read each time and not cached.
  if (!info) return executableAt(port_.processes->path(pid));
  CachedPath& cached = pathCache_[pid];
  // `executable` is null in a new entry, and in an entry whose path was not read because of std::bad_alloc.
  if (cached.executable == nullptr || cached.startSec != info->startSec) {
    cached = {info->startSec, &executableAt(port_.processes->path(pid))};
  }
  return *cached.executable;
}

const MemorySampler::Executable& MemorySampler::executableAt(std::string_view path) {
  const auto cached = executables_.find(path);
  if (cached != executables_.end()) return cached->second;
  Executable executable{std::string(path), std::string(lastPathComponent(path)),
                        outermostBundle(path).value_or("")};
  const std::string_view key = executable.path;
  return executables_.emplace(key, std::move(executable)).first->second;
}

double MemorySampler::cpuPercent(std::int32_t pid, const CachedCPU& current) const {
  const CachedCPU* const previous = previousCPU_.find(pid);
  if (!sweep_.interval || previous == nullptr) return 0;
  if (previous->startSec != current.startSec || current.cpuTime < previous->cpuTime) return 0;
  return static_cast<double>(current.cpuTime - previous->cpuTime) / *sweep_.interval * 100;
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

void MemorySampler::accumulateGroups() {
  sweep_.accumulators.clear();
  sweep_.accumulatorOfSample.clear();
  sweep_.smoothedCPU.clear();
  // The keys are views of text that `accumulators` keep alive until the next sweep.
  std::unordered_map<std::string_view, std::size_t> indexOfRoot;
  for (std::size_t i = 0; i < sweep_.samples.size(); ++i) {
    const ProcessSample& sample = sweep_.samples[i];
    SharedText root = ownRoot(sample.pid, *sweep_.live.find(sample.pid));
    if (root.empty()) root = ancestorRoot(sample.pid);
    std::size_t index = sweep_.accumulators.size();
    if (!root.empty()) index = indexOfRoot.try_emplace(root.string(), index).first->second;
    if (index == sweep_.accumulators.size()) {
      sweep_.accumulators.push_back({.root = std::move(root), .firstSample = i});
    }
    GroupAccumulator& accumulator = sweep_.accumulators[index];
    ++accumulator.count;
    accumulator.footprint = checkedAdd(accumulator.footprint, sample.footprint);
    accumulator.rawCPU += sample.cpuPercent;
    sweep_.accumulatorOfSample.push_back(index);
  }
  sweep_.applicationCount = indexOfRoot.size();
}

void MemorySampler::rankGroups() {
  // Sorts indexes because accumulators are large. The index breaks ties, so the order is stable.
  sweep_.ranking.resize(sweep_.accumulators.size());
  std::iota(sweep_.ranking.begin(), sweep_.ranking.end(), std::size_t{0});
  std::sort(sweep_.ranking.begin(), sweep_.ranking.end(), [this](std::size_t left, std::size_t right) {
    const std::uint64_t leftFootprint = sweep_.accumulators[left].footprint;
    const std::uint64_t rightFootprint = sweep_.accumulators[right].footprint;
    return leftFootprint != rightFootprint ? leftFootprint > rightFootprint : left < right;
  });
}

std::vector<AppGroup> MemorySampler::makeGroups() {
  std::vector<AppGroup> groups;
  groups.reserve(sweep_.accumulators.size());
  for (const std::size_t index : sweep_.ranking) {
    sweep_.accumulators[index].groupIndex = groups.size();
    groups.push_back(makeGroup(sweep_.accumulators[index]));
  }
  for (std::size_t i = 0; i < sweep_.samples.size(); ++i) {
    const GroupAccumulator& accumulator = sweep_.accumulators[sweep_.accumulatorOfSample[i]];
    groups[accumulator.groupIndex].processes.push_back(std::move(sweep_.samples[i]));
  }
  for (AppGroup& group : groups) {
    if (group.processes.size() < 2) continue;
    std::stable_sort(group.processes.begin(), group.processes.end(), largestFootprintFirst);
  }
  return groups;
}

AppGroup MemorySampler::makeGroup(const GroupAccumulator& accumulator) {
  const ProcessSample& first = sweep_.samples[accumulator.firstSample];
  AppGroup group{.id = accumulator.root.string(), .name = first.name, .footprint = accumulator.footprint};
  if (accumulator.root.empty()) {
    group.id = "pid:" + std::to_string(first.pid);
    group.cpuPercent = smoothProcessCPU(first.pid, accumulator.rawCPU);
  } else {
    group.name = displayNameText(group.id);
    group.bundlePath = group.id;
    group.cpuPercent = smoothApplicationCPU(group.id, accumulator.rawCPU);
  }
  group.processes.reserve(accumulator.count);
  return group;
}

void MemorySampler::pruneSmoothedCPU(const std::vector<AppGroup>& groups) {
  if (sweep_.applicationCount == smoothedCPU_.size()) return;
  std::unordered_set<std::string_view> roots;
  for (const AppGroup& group : groups) roots.insert(group.id);
  std::erase_if(smoothedCPU_, [&](const auto& entry) { return !roots.contains(entry.first); });
}

double MemorySampler::smooth(double previous, double raw) {
  return previous + (raw - previous) * cpuSmoothing;
}

double MemorySampler::smoothApplicationCPU(const std::string& root, double raw) {
  const auto [entry, isNew] = smoothedCPU_.try_emplace(root, raw);
  if (!isNew) entry->second = smooth(entry->second, raw);
  return entry->second;
}

double MemorySampler::smoothProcessCPU(std::int32_t pid, double raw) {
  const double* const previous = smoothedProcessCPU_.find(pid);
  return sweep_.smoothedCPU[pid] = previous ? smooth(*previous, raw) : raw;
}

const SharedText& MemorySampler::ownRoot(std::int32_t pid, Ancestor& process) {
  if (process.root.empty() && !process.rulesChecked && port_.applicationRules) {
    process.root = port_.applicationRules->applicationRoot(pid, process.executable->path.string());
  }
  process.rulesChecked = true;
  return process.root;
}

SharedText MemorySampler::ancestorRoot(std::int32_t startPID) {
  std::array<std::int32_t, maxAncestorSteps> visited{};
  Ancestor* process = sweep_.live.find(startPID);
  for (std::size_t step = 0; step < visited.size() && process != nullptr; ++step) {
    const std::int32_t parent = process->ppid;
    // Pids 0 and 1 belong to no application. The parent chain has a cycle when the process table changed
    // while it was read.
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
  const auto cached = displayNames_.find(bundleRoot);
  if (cached != displayNames_.end()) return cached->second;

  InformationDictionary information;
  if (port_.bundleInformation) information = port_.bundleInformation(bundleRoot);
  std::string name(deletingPathExtension(lastPathComponent(bundleRoot)));
  for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
    const auto entry = information.find(key);
    if (entry == information.end() || entry->second.empty()) continue;
    name = entry->second;
    break;
  }
  return displayNames_.emplace(bundleRoot, std::move(name)).first->second;
}

}  // namespace tarn
