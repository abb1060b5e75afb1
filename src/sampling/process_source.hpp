// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The contract between MemorySampler and a platform. A platform folder implements these interfaces. Deltas,
// smoothing, grouping and sorting are shared code in MemorySampler.
//
// Thread: all calls come from the sampler's serial queue, one at a time.
// Order of calls in one sweep: uptime; allPIDs; for each pid bsdInfo, path (only when no path is cached for
// this process), usage, processName (only when the path is empty); uptime; SystemMemoryReader::read. A
// process may exit between any two calls.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sampling/snapshot.hpp"

namespace tarn {

/// Resources that one process uses.
struct ProcessUsage {
  std::uint64_t footprint = 0;  ///< physical footprint, bytes
  std::uint64_t cpuTime = 0;    ///< user and system time since the process started, nanoseconds

  bool operator==(const ProcessUsage&) const = default;
};

/// Parent, owner and start time of one process.
struct BsdInfo {
  std::int32_t ppid = 0;       ///< parent pid
  std::uint32_t uid = 0;       ///< real user id
  std::uint64_t startSec = 0;  ///< start time, whole seconds since the epoch; differs when a pid is reused

  bool operator==(const BsdInfo&) const = default;
};

/// Queries of the process table. A query for a process that has exited or denies access returns nullopt or
/// empty text. No query throws or reports an error.
class ProcScan {
 public:
  virtual ~ProcScan() = default;

  /// All live pids greater than 0, in the system's order. Empty when they cannot be listed. It is the first
  /// query of every sweep, so an implementation may prune its per-process caches here.
  virtual std::vector<std::int32_t> allPIDs() = 0;

  virtual std::optional<BsdInfo> bsdInfo(std::int32_t pid) = 0;

  /// Absolute path of the executable. Empty when access is denied or the process has no executable.
  virtual std::string path(std::int32_t pid) = 0;

  virtual std::optional<ProcessUsage> usage(std::int32_t pid) = 0;

  /// The system's short name of a process whose path is empty. For display only.
  virtual SharedText processName(std::int32_t pid) = 0;

  /// The footprint from `usage`, bytes.
  std::optional<std::uint64_t> footprint(std::int32_t pid) {
    const std::optional<ProcessUsage> processUsage = usage(pid);
    if (!processUsage) return std::nullopt;
    return processUsage->footprint;
  }
};

/// System-wide memory figures in bytes. A figure that cannot be read is 0; the others are still valid.
class SystemMemoryReader {
 public:
  virtual ~SystemMemoryReader() = default;
  virtual std::uint64_t totalRAM() = 0;
  virtual std::uint64_t swapUsed() = 0;
  virtual SystemMemory read() = 0;
};

/// Finds the application of a process that has no ".app" directory in its path. MemorySampler calls it first
/// for the process itself, then for each ancestor until one has an application.
class ApplicationRules {
 public:
  virtual ~ApplicationRules() = default;

  /// Root path of the application that owns the process. Empty when there is none. `path` may be empty.
  /// Called at most once per process and sweep.
  virtual SharedText applicationRoot(std::int32_t pid, const std::string& path) = 0;
};

/// The entries of a bundle's Info.plist whose values are strings.
using InformationDictionary = std::map<std::string, std::string, std::less<>>;

/// The functions and objects of the platform that MemorySampler uses. Owned by the sampler and used only on
/// its queue.
struct SamplerPort {
  /// Shared with application rules that need it; they run on the same queue.
  std::shared_ptr<ProcScan> processes;
  std::unique_ptr<SystemMemoryReader> memory;

  /// Seconds since boot, without the time in system sleep.
  std::function<double()> uptime;

  /// Info.plist of the bundle at `bundleRoot`; empty when it has none. Unset on platforms without bundles: an
  /// application is then named after its directory.
  std::function<InformationDictionary(const std::string& bundleRoot)> bundleInformation;

  /// Null on platforms where the path alone identifies the application.
  std::unique_ptr<ApplicationRules> applicationRules;
};

}  // namespace tarn
