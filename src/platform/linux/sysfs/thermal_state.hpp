// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/sysfs/device_directory.hpp"

namespace tarn {

/// How often the processor has slowed itself down for heat, where it counts that: one counter per package,
/// or, on processors that have none, one per core.
class ThrottleCounters {
 public:
  explicit ThrottleCounters(std::string sys) : sys_(std::move(sys)) {}

  using Time = std::chrono::steady_clock::time_point;

  /// Whether a counter rose since the last call; false at the first one, and when the last one was more than
  /// ten seconds ago: what happened in between may be long over. Nothing when no counter can be read.
  std::optional<bool> haveRisen(Time now);

 private:
  struct Counter {
    DeviceDirectory directory;
    std::string file;
    std::optional<std::int64_t> last;
  };

  void lookForCounters();

  std::string sys_;
  std::vector<Counter> counters_;
  bool areKnown_ = false;  ///< until one no longer answers, as when its processor is switched off
  Time lastLook_;
};

}  // namespace tarn
