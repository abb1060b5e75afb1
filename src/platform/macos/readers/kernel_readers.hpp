// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Processes, memory figures and memory pressure, read through the kernel's functions.

#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/macos/readers/kernel.hpp"
#include "sampling/process_source.hpp"

namespace tarn::macos {

/// Reads the process table through libproc. Thread: any, also concurrently.
class MacProcScan final : public ProcScan {
 public:
  explicit MacProcScan(const KernelFunctions& kernel) : kernel_(kernel) {}

  std::vector<std::int32_t> allPIDs() override;

  /// nullopt unless the kernel fills the whole record. A parent pid above the range of std::int32_t aborts
  /// the program.
  std::optional<BsdInfo> bsdInfo(std::int32_t pid) override;

  std::string path(std::int32_t pid) override;

  /// The CPU time wraps around where it exceeds 64 bits.
  std::optional<ProcessUsage> usage(std::int32_t pid) override;

  /// Always empty: a process whose path cannot be read has no other name.
  SharedText processName(std::int32_t pid) override;

 private:
  std::uint64_t nanoseconds(std::uint64_t ticks);

  KernelFunctions kernel_;
  std::once_flag timebaseOnce_;
  Timebase timebase_ = {};
};

/// Reads the memory figures. A figure is 0 when its call fails. Thread: any.
class MacSystemMemoryReader final : public SystemMemoryReader {
 public:
  explicit MacSystemMemoryReader(const KernelFunctions& kernel) : kernel_(kernel) {}

  std::uint64_t totalRAM() override;
  std::uint64_t swapUsed() override;

  /// A number of bytes that exceeds 64 bits aborts the program.
  SystemMemory read() override;

 private:
  KernelFunctions kernel_;
};

/// The sysctl kern.memorystatus_vm_pressure_level; nullopt when it cannot be read. Thread: any.
std::optional<std::int32_t> readPressureLevel(const KernelFunctions& kernel);

}  // namespace tarn::macos
