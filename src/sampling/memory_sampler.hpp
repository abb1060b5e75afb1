// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "sampling/pid_map.hpp"
#include "sampling/process_source.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// Reads the process table and returns one snapshot of application groups per call of `sample`.
///
/// Not thread-safe: the owner calls all functions from one serial queue. State kept between sweeps:
/// executable paths and CPU times of live processes (valid while the start time of the pid is unchanged) and
/// the smoothed CPU percentage of each group. Bundle roots and display names are cached for the sampler's
/// lifetime.
class MemorySampler {
 public:
  explicit MemorySampler(SamplerPort port);

  MemorySampler(const MemorySampler&) = delete;
  MemorySampler& operator=(const MemorySampler&) = delete;

  /// One sweep over every process. A process whose usage cannot be read is omitted; other values that cannot
  /// be read are 0 or empty. Throws std::bad_alloc when memory runs out; the next sweep is correct again.
  MemorySnapshot sample();

  /// The ".app" bundle that contains the executable at `forPath`; nullopt when there is none. Cached.
  std::optional<std::string> bundleRoot(const std::string& forPath);

  /// The name of the application at `forBundleRoot`: from its Info.plist, else from its directory. Cached.
  std::string displayName(const std::string& forBundleRoot);

 private:
  /// An executable file. One object per path; it exists as long as the sampler.
  struct Executable {
    SharedText path;
    SharedText name;
    SharedText bundle;  ///< root of the ".app" bundle that contains it; empty without one
  };
  struct CachedPath {
    std::uint64_t startSec = 0;
    const Executable* executable = nullptr;
  };
  struct CachedCPU {
    std::uint64_t startSec = 0;
    std::uint64_t cpuTime = 0;  ///< nanoseconds
  };

  /// The data of a listed process that the search for the application of a descendant uses.
  struct Ancestor {
    std::int32_t ppid = 0;      ///< 0 when unknown
    bool rulesChecked = false;  ///< whether ApplicationRules were called in this sweep
    const Executable* executable = nullptr;
    SharedText root;  ///< application root; empty without an application or before the rules are checked
  };

  /// The sums over the processes of one group.
  struct GroupAccumulator {
    SharedText root;  ///< application root; empty for a process without an application
    std::size_t firstSample = 0;
    std::size_t count = 0;
    std::uint64_t footprint = 0;
    double rawCPU = 0;           ///< unsmoothed, percent of one core
    std::size_t groupIndex = 0;  ///< in the snapshot
  };

  /// The data of the current sweep. A member of the sampler so that its allocations are reused.
  struct Sweep {
    std::optional<double>
        interval;           ///< nanoseconds since the previous sweep; absent when uptime did not advance
    PidMap<Ancestor> live;  ///< every listed process
    PidMap<CachedCPU> cpu;
    std::vector<ProcessSample> samples;
    std::vector<GroupAccumulator> accumulators;
    std::vector<std::size_t> accumulatorOfSample;  ///< index in `accumulators` for each of `samples`
    std::vector<std::size_t> ranking;              ///< indexes in `accumulators`, largest footprint first
    std::size_t applicationCount = 0;              ///< number of `accumulators` that have a root
    PidMap<double> smoothedCPU;  ///< of groups without a root, by the pid of their only process
  };

  void beginSweep(double uptime, std::size_t processCount);
  void measure(std::int32_t pid);
  const Executable& executableOf(std::int32_t pid, const std::optional<BsdInfo>& info);
  const Executable& executableAt(std::string_view path);
  double cpuPercent(std::int32_t pid, const CachedCPU& current) const;
  SharedText nameWithoutPath(std::int32_t pid);
  void endSweep(double uptime);

  void accumulateGroups();
  void rankGroups();
  std::vector<AppGroup> makeGroups();
  AppGroup makeGroup(const GroupAccumulator& accumulator);
  void pruneSmoothedCPU(const std::vector<AppGroup>& groups);
  static double smooth(double previous, double raw);
  double smoothApplicationCPU(const std::string& root, double raw);
  double smoothProcessCPU(std::int32_t pid, double raw);

  /// The application root of a listed process, found by its path, else by ApplicationRules. Empty if it has
  /// no application.
  const SharedText& ownRoot(std::int32_t pid, Ancestor& process);

  /// The application root of the nearest ancestor that has one. Checks at most eight ancestors. Empty if none
  /// of them has one.
  SharedText ancestorRoot(std::int32_t startPID);

  const SharedText& displayNameText(const std::string& bundleRoot);

  SamplerPort port_;
  std::unordered_map<std::string_view, Executable> executables_;  ///< by path; never pruned
  std::unordered_map<std::string, SharedText> displayNames_;      ///< by bundle root; never pruned
  PidMap<CachedPath> pathCache_;
  PidMap<CachedCPU> previousCPU_;
  std::optional<double> previousUptime_;                 ///< at the start of the previous sweep, seconds
  std::unordered_map<std::string, double> smoothedCPU_;  ///< of groups with a root, by root
  PidMap<double> smoothedProcessCPU_;                    ///< of groups without a root, by pid
  Sweep sweep_;
  static constexpr double cpuSmoothing = 0.4;  ///< weight of the newest value
};

}  // namespace tarn
