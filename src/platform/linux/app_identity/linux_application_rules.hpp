// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/app_identity/application_index.hpp"
#include "platform/linux/procfs/linux_roots.hpp"
#include "sampling/pid_map.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// Finds the application of a process. The first rule that applies decides:
///
/// 1. the Flatpak or snap of its cgroup;
/// 2. the desktop file whose Exec key starts its executable, or whose private directory contains it;
/// 3. the D-Bus service with an application's id that its executable implements;
/// 4. for an interpreter: the desktop file of its script, found as in rule 2;
/// 5. the systemd unit of its cgroup;
/// 6. the AppImage that contains its executable.
///
/// The result is cached until the process executes another program or the desktop files change.
class LinuxApplicationRules final : public ApplicationRules {
 public:
  /// Identifies an execution of a program: the number differs between processes, and changes when a process
  /// executes another program. nullopt for a process that does not exist or has no program (kernel threads).
  using ExecId = std::function<std::optional<std::uint64_t>(std::int32_t pid)>;
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  LinuxApplicationRules(LinuxRoots roots, ApplicationIndex index, ExecId execId,
                        Clock clock = std::chrono::steady_clock::now);

  /// Returns the path of the application's desktop file. `path` is ignored: it may be the path of a program
  /// that the process executed earlier.
  SharedText applicationRoot(std::int32_t pid, const std::string& path) override;

  /// Number of cached processes.
  std::size_t knownProcessCount() const { return cache_.size(); }

 private:
  struct CachedRoot {
    std::uint64_t execId = 0;
    SharedText root;  ///< empty: the process belongs to no application
  };

  void refreshIndex();
  void prune();
  std::string findRoot(std::int32_t pid) const;
  const std::string* findByProgram(const std::string& path) const;
  const std::string* findById(const std::vector<std::string>& ids) const;
  std::string findInAppImage(const std::string& executable) const;

  LinuxRoots roots_;
  ApplicationIndex index_;
  ExecId execId_;
  Clock clock_;
  std::optional<std::chrono::steady_clock::time_point> lastRefresh_;
  PidMap<CachedRoot> cache_;
  std::size_t pruneSize_;  ///< size of `cache_` at which it is pruned next
};

/// The data that the rules read for every new process.
struct ProcessOrigin {
  std::string executable;  ///< target of /proc/PID/exe, a path in the mount namespace of the process
  std::string cgroup;      ///< path in the hierarchy that systemd manages
};

/// A text is empty if its file cannot be read.
ProcessOrigin readProcessOrigin(const LinuxRoots& roots, std::int32_t pid);

/// The first arguments of a process, at most 12. Empty if they cannot be read.
std::vector<std::string> readArguments(const LinuxRoots& roots, std::int32_t pid);

}  // namespace tarn
