// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/memory_sampler.hpp"

#include <algorithm>
#include <array>
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
  snapshot.groups = makeGroups(tallyGroups());
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
  Executable program = executable(pid, info);
  *ancestor = {.ppid = info ? info->ppid : 0, .path = program.path, .root = std::move(program.bundle)};

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
  sample.name = program.path.empty() ? nameWithoutPath(pid) : std::move(program.name);
  sample.path = std::move(program.path);
  sweep_.samples.push_back(std::move(sample));
}

MemorySampler::Executable MemorySampler::executable(std::int32_t pid, const std::optional<BsdInfo>& info) {
  // Without a start time nothing says whether a cached path is still this process's.
  if (!info) return readExecutable(pid);
  const auto [cached, isNew] = pathCache_.tryEmplace(pid);
  if (isNew || cached->startSec != info->startSec) *cached = {info->startSec, readExecutable(pid)};
  return cached->executable;
}

MemorySampler::Executable MemorySampler::readExecutable(std::int32_t pid) {
  std::string path = port_.processes->path(pid);
  if (path.empty()) return {};
  std::string name(lastPathComponent(path));
  const SharedText& bundle = bundleRootText(path);
  return {std::move(path), std::move(name), bundle};
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

MemorySampler::Tallies MemorySampler::tallyGroups() {
  Tallies tallies;
  tallies.groupOfSample.reserve(sweep_.samples.size());
  std::unordered_map<std::string_view, std::size_t> groupOfRoot;
  for (std::size_t i = 0; i < sweep_.samples.size(); ++i) {
    const ProcessSample& sample = sweep_.samples[i];
    SharedText root = ownRoot(sample.pid, *sweep_.live.find(sample.pid));
    if (root.empty()) root = ancestorBundleRoot(sample.pid);
    std::size_t group = tallies.groups.size();
    // A root's text lasts: whoever has it keeps it until the next sweep.
    if (!root.empty()) group = groupOfRoot.try_emplace(root.string(), group).first->second;
    if (group == tallies.groups.size()) tallies.groups.push_back({.root = std::move(root), .firstSample = i});
    Tally& tally = tallies.groups[group];
    ++tally.count;
    tally.footprint = checkedAdd(tally.footprint, sample.footprint);
    tally.rawCPU += sample.cpuPercent;
    tallies.groupOfSample.push_back(group);
  }
  return tallies;
}

std::vector<AppGroup> MemorySampler::makeGroups(const Tallies& tallies) {
  // What is sorted are places: groups are large to move.
  std::vector<std::size_t> order(tallies.groups.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
    const std::uint64_t one = tallies.groups[left].footprint;
    const std::uint64_t other = tallies.groups[right].footprint;
    return one != other ? one > other : left < right;
  });

  std::vector<AppGroup> groups;
  groups.reserve(order.size());
  std::vector<std::size_t> place(order.size());
  for (const std::size_t group : order) {
    place[group] = groups.size();
    groups.push_back(makeGroup(tallies.groups[group]));
  }
  for (std::size_t i = 0; i < sweep_.samples.size(); ++i) {
    groups[place[tallies.groupOfSample[i]]].processes.push_back(std::move(sweep_.samples[i]));
  }
  for (AppGroup& group : groups) {
    if (group.processes.size() < 2) continue;
    std::stable_sort(group.processes.begin(), group.processes.end(), largestFootprintFirst);
  }
  if (groups.size() < smoothedCPU_.size()) {
    std::unordered_set<std::string_view> ids;
    for (const AppGroup& group : groups) ids.insert(group.id);
    std::erase_if(smoothedCPU_, [&](const auto& remembered) { return !ids.contains(remembered.first); });
  }
  return groups;
}

AppGroup MemorySampler::makeGroup(const Tally& tally) {
  const ProcessSample& first = sweep_.samples[tally.firstSample];
  AppGroup group{.id = tally.root.string(), .name = first.name, .footprint = tally.footprint};
  if (tally.root.empty()) {
    group.id = "pid:" + std::to_string(first.pid);
  } else {
    group.name = displayNameText(group.id);
    group.bundlePath = group.id;
  }
  group.cpuPercent = smoothed(group.id, tally.rawCPU);
  group.processes.reserve(tally.count);
  return group;
}

double MemorySampler::smoothed(const std::string& groupID, double raw) {
  const auto [remembered, isNew] = smoothedCPU_.try_emplace(groupID, raw);
  if (!isNew) remembered->second += (raw - remembered->second) * cpuSmoothing;
  return remembered->second;
}

const SharedText& MemorySampler::ownRoot(std::int32_t pid, Ancestor& process) {
  if (process.root.empty() && !process.isAsked && port_.applicationRules) {
    process.root = port_.applicationRules->applicationRoot(pid, process.path.string());
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
  const SharedText& root = bundleRootText(forPath);
  return root.empty() ? std::nullopt : std::optional(root.string());
}

const SharedText& MemorySampler::bundleRootText(const std::string& path) {
  const auto cached = bundleRootCache_.find(path);
  if (cached != bundleRootCache_.end()) return cached->second;
  return bundleRootCache_.emplace(path, outermostBundle(path).value_or("")).first->second;
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
