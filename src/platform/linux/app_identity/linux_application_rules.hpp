// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/app_identity/application_index.hpp"
#include "platform/linux/app_identity/process_facts.hpp"
#include "sampling/pid_map.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// Finds the application of a process by the first rule that knows it: its sandbox; the executable or the
/// directory that a desktop file leads to; the bus service of the application's id; the script that an
/// interpreter runs; the session manager's unit; the image that it was started from.
///
/// A process is looked at once, and again when it has started another program or the applications changed.
class LinuxApplicationRules final : public ApplicationRules {
 public:
  /// A number that is another one for each program that a process runs; nothing for a process that is gone.
  using Generation = std::function<std::optional<std::uint64_t>(std::int32_t pid)>;
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  LinuxApplicationRules(LinuxRoots roots, ApplicationIndex index, Generation generationOf,
                        Clock clock = std::chrono::steady_clock::now);

  /// The path of the application's desktop file.
  SharedText applicationRoot(std::int32_t pid, const std::string& path) override;

  /// How many processes are remembered.
  std::size_t knownProcessCount() const { return found_.size(); }

 private:
  struct Found {
    std::uint64_t generation = 0;
    SharedText root;  ///< empty: it belongs to none
  };

  void refreshIndex();
  void forgetTheGone();
  std::string find(std::int32_t pid, const ProcessFacts& facts) const;
  const std::string* byProgram(const std::string& path) const;
  const std::string* byAnyId(const std::vector<std::string>& ids) const;
  std::string inImage(const std::string& executable) const;

  LinuxRoots roots_;
  ApplicationIndex index_;
  Generation generationOf_;
  Clock clock_;
  std::optional<std::chrono::steady_clock::time_point> lastRefresh_;
  PidMap<Found> found_;
  std::size_t sizeToPrune_;
};

}  // namespace tarn
