// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "sampling/platform_readers.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// Turns the process table into one snapshot of application groups per call of `sample`.
///
/// A reference object, not thread-safe: its owner calls it from one serial queue. Between sweeps it remembers
/// paths and CPU times of live processes (valid only while a pid's start time is unchanged), the smoothed
/// share of each group, and, for its whole life, bundle roots and display names.
class MemorySampler {
 public:
  using PathByPID = std::unordered_map<std::int32_t, std::string>;
  using ParentByPID = std::unordered_map<std::int32_t, std::int32_t>;

  explicit MemorySampler(SamplerPort port = platformSamplerPort());

  MemorySampler(const MemorySampler&) = delete;
  MemorySampler& operator=(const MemorySampler&) = delete;

  /// One sweep over every process. Never fails: what cannot be read is left out or neutral.
  MemorySnapshot sample();

  /// The application bundle that holds an executable, cached; nothing when its path has none.
  std::optional<std::string> bundleRoot(const std::string& forPath);

  /// The name of the application at a root, cached: from its information dictionary, else its directory's.
  std::string displayName(const std::string& forBundleRoot);

 private:
  struct CachedPath {
    std::uint64_t startSec = 0;
    std::string path;
  };
  struct CachedCPU {
    std::uint64_t startSec = 0;
    std::uint64_t cpuTime = 0;  ///< nanoseconds
  };
  struct GroupEntry {
    std::string name;
    std::optional<std::string> bundlePath;
    std::vector<ProcessSample> procs;
  };
  using GroupMap = std::unordered_map<std::string, GroupEntry>;

  /// What one sweep gathers before it groups.
  struct Sweep {
    std::optional<double> interval;  ///< nanoseconds since the previous sweep; absent when it did not advance
    std::unordered_set<std::int32_t> live;
    ParentByPID ppidByPID;
    PathByPID pathByPID;
    std::unordered_map<std::int32_t, CachedCPU> cpu;
    std::vector<ProcessSample> samples;
  };

  Sweep beginSweep(double uptime, std::size_t processCount) const;
  void measure(std::int32_t pid, Sweep& sweep);
  std::string executablePath(std::int32_t pid, const std::optional<BsdInfo>& info);
  double cpuPercent(std::int32_t pid, const CachedCPU& current, const Sweep& sweep) const;
  std::string processName(std::int32_t pid, const std::string& path);
  void endSweep(Sweep& sweep, double uptime);

  GroupMap gatherGroups(Sweep& sweep);
  std::vector<AppGroup> finishGroups(GroupMap entries);
  double smoothed(const std::string& groupID, double raw);

  /// The application of one process by its path, else by the platform's rules.
  std::optional<std::string> ownRoot(std::int32_t pid, const std::string& path);

  /// The application of the nearest of at most eight ancestors that has one.
  std::optional<std::string> ancestorBundleRoot(std::int32_t startPID, const PathByPID& pathByPID,
                                                const ParentByPID& ppidByPID);

  SamplerPort port_;
  std::unordered_map<std::string, std::optional<std::string>> bundleRootCache_;  ///< never pruned
  std::unordered_map<std::string, std::string> displayNameCache_;                ///< never pruned
  std::unordered_map<std::int32_t, CachedPath> pathCache_;
  std::unordered_map<std::int32_t, CachedCPU> previousCPU_;
  std::optional<double> previousUptime_;  ///< seconds, at the start of the previous sweep
  std::unordered_map<std::string, double> smoothedCPU_;
  static constexpr double cpuSmoothing = 0.4;  ///< weight of the newest value
};

}  // namespace tarn
