// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/macos/readers/system_functions.hpp"
#include "sampling/process_source.hpp"

namespace tarn::macos {

/// The process table. Reentrant.
class MacProcScan final : public ProcScan {
 public:
  explicit MacProcScan(const SystemFunctions& system) : system_(system) {}

  std::vector<std::int32_t> allPIDs() override;

  /// Nothing unless the system fills the whole record. A parent beyond the range of pids stops the program.
  std::optional<BsdInfo> bsdInfo(std::int32_t pid) override;

  std::string path(std::int32_t pid) override;

  /// Processor time wraps silently where it exceeds 64 bits.
  std::optional<ProcessUsage> usage(std::int32_t pid) override;

  /// Always empty: here a process without a path has no other name.
  SharedText processName(std::int32_t pid) override;

 private:
  std::uint64_t nanoseconds(std::uint64_t ticks);

  SystemFunctions system_;
  std::once_flag timebaseOnce_;
  Timebase timebase_ = {};
};

}  // namespace tarn::macos
