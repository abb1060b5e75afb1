// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/hardware/device_directory.hpp"

namespace tarn {

/// How often the processor has slowed itself down for heat, where it counts that: one counter per package,
/// or, on processors that have none, one per core.
class ThrottleCounters {
 public:
  explicit ThrottleCounters(std::string sys) : sys_(std::move(sys)) {}

  /// Whether a counter rose since the last call; false at the first. Nothing when no counter can be read.
  std::optional<bool> haveRisen();

 private:
  struct Counter {
    DeviceDirectory directory;
    std::string file;
    std::optional<std::int64_t> last;
  };

  void lookForCounters();

  std::string sys_;
  bool looked_ = false;  ///< processors do not change
  std::vector<Counter> counters_;
};

}  // namespace tarn
