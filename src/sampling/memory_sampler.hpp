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

/// Turns the process table into one snapshot of application groups per call of `sample`.
///
/// A reference object, not thread-safe: its owner calls it from one serial queue. Between sweeps it remembers
/// paths and CPU times of live processes (valid only while a pid's start time is unchanged), the smoothed
/// share of each group, and, for its whole life, bundle roots and display names.
class MemorySampler {
 public:
  explicit MemorySampler(SamplerPort port);

  MemorySampler(const MemorySampler&) = delete;
  MemorySampler& operator=(const MemorySampler&) = delete;

  /// One sweep over every process: what cannot be read is left out or neutral. Without the memory for it
  /// there is none, and std::bad_alloc is thrown; the next one is as right as any.
  MemorySnapshot sample();

  /// The application bundle that holds an executable, cached; nothing when its path has none.
  std::optional<std::string> bundleRoot(const std::string& forPath);

  /// The name of the application at a root, cached: from its information dictionary, else its directory's.
  std::string displayName(const std::string& forBundleRoot);

 private:
  /// An executable, and what its path alone tells. Processes of one path share one, which lasts as long as
  /// the sampler.
  struct Executable {
    SharedText path;
    SharedText name;
    SharedText bundle;  ///< root of the bundle that holds it; empty without one
  };
  struct CachedPath {
    std::uint64_t startSec = 0;
    const Executable* executable = nullptr;
  };
  struct CachedCPU {
    std::uint64_t startSec = 0;
    std::uint64_t cpuTime = 0;  ///< nanoseconds
  };

  /// What a listed process is to its descendants.
  struct Ancestor {
    std::int32_t ppid = 0;  ///< 0 when unknown
    bool isAsked = false;   ///< whether the platform's rules were asked in this sweep
    const Executable* executable = nullptr;
    SharedText root;  ///< of its own application; empty without one, or before it is asked
  };

  /// A group before its records are made.
  struct Tally {
    SharedText root;  ///< empty for a process on its own
    std::size_t firstSample = 0;
    std::size_t count = 0;
    std::uint64_t footprint = 0;
    double rawCPU = 0;
    std::size_t place = 0;  ///< among the snapshot's groups
  };

  /// What one sweep gathers before it makes groups. The room that it takes is kept for the next one.
  struct Sweep {
    std::optional<double> interval;  ///< nanoseconds since the previous sweep; absent when it did not advance
    PidMap<Ancestor> live;           ///< every process that was listed
    PidMap<CachedCPU> cpu;
    std::vector<ProcessSample> samples;
    std::vector<Tally> tallies;
    std::vector<std::size_t> tallyOfSample;
    std::vector<std::size_t> ranking;  ///< places in `tallies`, largest footprint first
    std::size_t applications = 0;      ///< how many of them have a root
    PidMap<double> smoothedCPU;        ///< of those without one, by the only process of each
  };

  void beginSweep(double uptime, std::size_t processCount);
  void measure(std::int32_t pid);
  const Executable& executable(std::int32_t pid, const std::optional<BsdInfo>& info);
  const Executable& executableAt(std::string_view path);
  double cpuPercent(std::int32_t pid, const CachedCPU& current) const;
  SharedText nameWithoutPath(std::int32_t pid);
  void endSweep(double uptime);

  void tallyGroups();
  void rankGroups();
  std::vector<AppGroup> makeGroups();
  void forgetVanishedApplications(const std::vector<AppGroup>& groups);
  AppGroup makeGroup(const Tally& tally);
  static double smoothed(double before, double raw);
  double smoothedOfApplication(const std::string& root, double raw);
  double smoothedOfProcess(std::int32_t pid, double raw);

  /// The application of a listed process by its path, else by the platform's rules; empty without one.
  const SharedText& ownRoot(std::int32_t pid, Ancestor& process);

  /// The application of the nearest of at most eight ancestors that has one; empty without one.
  SharedText ancestorBundleRoot(std::int32_t startPID);

  const SharedText& displayNameText(const std::string& bundleRoot);

  SamplerPort port_;
  std::unordered_map<std::string_view, Executable> bundleRootCache_;  ///< by their own paths; never pruned
  std::unordered_map<std::string, SharedText> displayNameCache_;      ///< never pruned
  PidMap<CachedPath> pathCache_;
  PidMap<CachedCPU> previousCPU_;
  std::optional<double> previousUptime_;                 ///< seconds, at the start of the previous sweep
  std::unordered_map<std::string, double> smoothedCPU_;  ///< of groups that have a root, by it
  PidMap<double> smoothedProcessCPU_;                    ///< of groups of one process without a root
  Sweep sweep_;
  static constexpr double cpuSmoothing = 0.4;  ///< weight of the newest value
};

}  // namespace tarn
