// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the sampler needs from the operating system. A port implements these contracts in its platform
// folder; deltas, smoothing, grouping and sorting are shared code above them.
//
// All calls come from the sampler's serial queue, one at a time, in this order per sweep: uptime, allPIDs,
// then for each pid bsdInfo, path (only for a process not met before), usage, processName (only without a
// path); at the end uptime and SystemMemoryReader::read. A process may vanish between any two calls.

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

/// What one process uses.
struct ProcessUsage {
  std::uint64_t footprint = 0;  ///< physical footprint, bytes
  std::uint64_t cpuTime = 0;    ///< user and system time since the process started, nanoseconds

  bool operator==(const ProcessUsage&) const = default;
};

/// Where a process comes from.
struct BsdInfo {
  std::int32_t ppid = 0;       ///< parent pid
  std::uint32_t uid = 0;       ///< real owner
  std::uint64_t startSec = 0;  ///< start time, whole seconds since the epoch; a pid's identity over time

  bool operator==(const BsdInfo&) const = default;
};

/// Queries of the process table. A process that cannot be asked gives no value, or an empty text; nothing is
/// reported and nothing throws.
class ProcScan {
 public:
  virtual ~ProcScan() = default;

  /// All live pids greater than 0, in the system's order; empty when they cannot be listed. Called first in
  /// every sweep, so a port may prepare or prune here what it keeps for the sweep.
  virtual std::vector<std::int32_t> allPIDs() = 0;

  virtual std::optional<BsdInfo> bsdInfo(std::int32_t pid) = 0;

  /// Path of the executable; empty when it is refused or when there is none.
  virtual std::string path(std::int32_t pid) = 0;

  virtual std::optional<ProcessUsage> usage(std::int32_t pid) = 0;

  /// What the system calls a process whose path is unknown, for display only; empty when it has no name for
  /// it.
  virtual SharedText processName(std::int32_t pid) = 0;

  /// The footprint alone, through `usage`.
  std::optional<std::uint64_t> footprint(std::int32_t pid);
};

/// The system-wide memory figures; each is 0 when it cannot be read, independently of the others.
class SystemMemoryReader {
 public:
  virtual ~SystemMemoryReader() = default;
  virtual std::uint64_t totalRAM() = 0;
  virtual std::uint64_t swapUsed() = 0;
  virtual SystemMemory read() = 0;
};

/// Finds the application of a process by other means than a bundle directory in its path. Asked only where
/// the path gives no root: for the process itself, then for each ancestor on the walk.
class ApplicationRules {
 public:
  virtual ~ApplicationRules() = default;

  /// Root path of the application that owns the process, or empty. `path` may be empty. Asked in every sweep,
  /// at most once for each process.
  virtual SharedText applicationRoot(std::int32_t pid, const std::string& path) = 0;
};

/// The text entries of a bundle's information dictionary; entries of other types are left out.
using InformationDictionary = std::map<std::string, std::string, std::less<>>;

/// The operating system as the sampler sees it. Owned by the sampler, used on its queue only.
struct SamplerPort {
  /// Shared with application rules that need it; they run on the same queue.
  std::shared_ptr<ProcScan> processes;
  std::unique_ptr<SystemMemoryReader> memory;

  /// Seconds since the system started, without the time it slept.
  std::function<double()> uptime;

  /// Information dictionary of the bundle at a path; empty when there is none. Unset where the platform has
  /// no bundles: applications are then named by their directory.
  std::function<InformationDictionary(const std::string& bundleRoot)> bundleInformation;

  /// Null where the platform knows applications by their paths alone.
  std::unique_ptr<ApplicationRules> applicationRules;
};

}  // namespace tarn
