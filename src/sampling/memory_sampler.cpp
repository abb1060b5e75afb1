// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/memory_sampler.hpp"

#include <algorithm>
#include <utility>

#include "sampling/bundle_path.hpp"
#include "sampling/checked_arithmetic.hpp"

namespace tarn {

namespace {

constexpr double nanosecondsPerSecond = 1'000'000'000.0;
constexpr int ancestorSteps = 8;

constexpr auto largestFootprintFirst = [](const auto& left, const auto& right) {
  return left.footprint > right.footprint;
};

}  // namespace

MemorySampler::MemorySampler(SamplerPort port) : port_(std::move(port)) {}

MemorySnapshot MemorySampler::sample() {
  const double start = port_.uptime();
  const std::vector<std::int32_t> pids = port_.processes->allPIDs();
  Sweep sweep = beginSweep(start, pids.size());
  for (const std::int32_t pid : pids) measure(pid, sweep);
  endSweep(sweep, start);

  MemorySnapshot snapshot;
  snapshot.groups = finishGroups(gatherGroups(sweep));
  snapshot.sweepDuration = port_.uptime() - start;
  // Outside the measured duration: the system's figures are not part of the sweep over processes.
  snapshot.system = port_.memory->read();
  return snapshot;
}

MemorySampler::Sweep MemorySampler::beginSweep(double uptime, std::size_t processCount) const {
  Sweep sweep;
  if (previousUptime_ && uptime > *previousUptime_) {
    sweep.interval = (uptime - *previousUptime_) * nanosecondsPerSecond;
  }
  sweep.live.reserve(processCount);
  sweep.ppidByPID.reserve(processCount);
  sweep.pathByPID.reserve(processCount);
  sweep.cpu.reserve(processCount);
  sweep.samples.reserve(processCount);
  return sweep;
}

void MemorySampler::measure(std::int32_t pid, Sweep& sweep) {
  // A process table that changes while it is read may name a process twice.
  if (!sweep.live.insert(pid).second) return;
  const std::optional<BsdInfo> info = port_.processes->bsdInfo(pid);
  if (info) sweep.ppidByPID[pid] = info->ppid;
  std::string path = executablePath(pid, info);
  if (!path.empty()) sweep.pathByPID[pid] = path;

  const std::optional<ProcessUsage> usage = port_.processes->usage(pid);
  if (!usage) return;
  ProcessSample sample{.pid = pid, .footprint = usage->footprint};
  if (info) {
    const CachedCPU current{info->startSec, usage->cpuTime};
    sample.ppid = info->ppid;
    sample.uid = info->uid;
    sample.cpuPercent = cpuPercent(pid, current, sweep);
    sweep.cpu[pid] = current;
  }
  sample.name = processName(pid, path);
  sample.path = std::move(path);
  sweep.samples.push_back(std::move(sample));
}

std::string MemorySampler::executablePath(std::int32_t pid, const std::optional<BsdInfo>& info) {
  // Without a start time nothing says whether a cached path is still this process's.
  if (!info) return port_.processes->path(pid);
  const auto cached = pathCache_.find(pid);
  if (cached != pathCache_.end() && cached->second.startSec == info->startSec) return cached->second.path;
  std::string path = port_.processes->path(pid);
  pathCache_[pid] = {info->startSec, path};
  return path;
}

double MemorySampler::cpuPercent(std::int32_t pid, const CachedCPU& current, const Sweep& sweep) const {
  const auto previous = previousCPU_.find(pid);
  if (!sweep.interval || previous == previousCPU_.end()) return 0;
  const CachedCPU& before = previous->second;
  if (before.startSec != current.startSec || current.cpuTime < before.cpuTime) return 0;
  return static_cast<double>(current.cpuTime - before.cpuTime) / *sweep.interval * 100;
}

std::string MemorySampler::processName(std::int32_t pid, const std::string& path) {
  if (!path.empty()) return std::string(lastPathComponent(path));
  std::string name = port_.processes->processName(pid);
  return name.empty() ? "PID " + std::to_string(pid) : name;
}

void MemorySampler::endSweep(Sweep& sweep, double uptime) {
  previousCPU_ = std::move(sweep.cpu);
  previousUptime_ = uptime;
  if (sweep.live.size() < pathCache_.size()) {
    std::erase_if(pathCache_, [&](const auto& entry) { return !sweep.live.contains(entry.first); });
  }
}

MemorySampler::GroupMap MemorySampler::gatherGroups(Sweep& sweep) {
  GroupMap groups;
  for (ProcessSample& sample : sweep.samples) {
    std::optional<std::string> root = ownRoot(sample.pid, sample.path);
    if (!root) root = ancestorBundleRoot(sample.pid, sweep.pathByPID, sweep.ppidByPID);
    const std::string id = root ? *root : "pid:" + std::to_string(sample.pid);
    const auto [entry, isNew] = groups.try_emplace(id);
    if (isNew) {
      entry->second.name = root ? displayName(*root) : sample.name;
      entry->second.bundlePath = std::move(root);
    }
    entry->second.procs.push_back(std::move(sample));
  }
  return groups;
}

std::vector<AppGroup> MemorySampler::finishGroups(GroupMap entries) {
  std::vector<AppGroup> groups;
  groups.reserve(entries.size());
  for (auto& [id, entry] : entries) {
    AppGroup group{.id = id, .name = std::move(entry.name), .bundlePath = std::move(entry.bundlePath)};
    double raw = 0;
    for (const ProcessSample& process : entry.procs) {
      group.footprint = checkedAdd(group.footprint, process.footprint);
      raw += process.cpuPercent;
    }
    group.cpuPercent = smoothed(id, raw);
    group.processes = std::move(entry.procs);
    std::stable_sort(group.processes.begin(), group.processes.end(), largestFootprintFirst);
    groups.push_back(std::move(group));
  }
  std::stable_sort(groups.begin(), groups.end(), largestFootprintFirst);
  if (entries.size() < smoothedCPU_.size()) {
    std::erase_if(smoothedCPU_, [&](const auto& remembered) { return !entries.contains(remembered.first); });
  }
  return groups;
}

double MemorySampler::smoothed(const std::string& groupID, double raw) {
  const auto [remembered, isNew] = smoothedCPU_.try_emplace(groupID, raw);
  if (!isNew) remembered->second += (raw - remembered->second) * cpuSmoothing;
  return remembered->second;
}

std::optional<std::string> MemorySampler::ownRoot(std::int32_t pid, const std::string& path) {
  std::optional<std::string> root = bundleRoot(path);
  if (!root && port_.applicationRules) root = port_.applicationRules->applicationRoot(pid, path);
  return root;
}

std::optional<std::string> MemorySampler::ancestorBundleRoot(std::int32_t startPID,
                                                             const PathByPID& pathByPID,
                                                             const ParentByPID& ppidByPID) {
  static const std::string noPath;
  std::unordered_set<std::int32_t> visited;
  std::int32_t pid = startPID;
  for (int step = 0; step < ancestorSteps; ++step) {
    const auto parent = ppidByPID.find(pid);
    // Pids 0 and 1 own no application; a parent met before means the table changed while it was read.
    if (parent == ppidByPID.end() || parent->second < 2) return std::nullopt;
    pid = parent->second;
    if (!visited.insert(pid).second) return std::nullopt;
    const auto path = pathByPID.find(pid);
    if (auto root = ownRoot(pid, path == pathByPID.end() ? noPath : path->second)) return root;
  }
  return std::nullopt;
}

std::optional<std::string> MemorySampler::bundleRoot(const std::string& forPath) {
  const auto cached = bundleRootCache_.find(forPath);
  if (cached != bundleRootCache_.end()) return cached->second;
  return bundleRootCache_.emplace(forPath, outermostBundle(forPath)).first->second;
}

std::string MemorySampler::displayName(const std::string& forBundleRoot) {
  const auto cached = displayNameCache_.find(forBundleRoot);
  if (cached != displayNameCache_.end()) return cached->second;

  InformationDictionary information;
  if (port_.bundleInformation) information = port_.bundleInformation(forBundleRoot);
  std::string name(deletingPathExtension(lastPathComponent(forBundleRoot)));
  for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
    const auto entry = information.find(key);
    if (entry == information.end() || entry->second.empty()) continue;
    name = entry->second;
    break;
  }
  return displayNameCache_.emplace(forBundleRoot, std::move(name)).first->second;
}

}  // namespace tarn
