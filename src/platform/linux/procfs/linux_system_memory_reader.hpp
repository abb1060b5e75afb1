// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>

#include "platform/linux/procfs/linux_roots.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// The machine's memory figures, from `/proc/meminfo`, `/proc/swaps` and the compressed memory devices.
class LinuxSystemMemoryReader final : public SystemMemoryReader {
 public:
  explicit LinuxSystemMemoryReader(LinuxRoots roots);

  /// Installed memory: what the kernel has online in memory blocks, of which it keeps some for itself. Where
  /// it tells no blocks, or less than it uses, the memory that it uses.
  std::uint64_t totalRAM() override;

  /// Swap that lies on a device or in a file: without what is kept compressed in memory.
  std::uint64_t swapUsed() override;

  SystemMemory read() override;

 private:
  MemoryInfo readMemoryInfo() const;
  std::uint64_t installedMemory(const MemoryInfo& info);
  std::uint64_t readSwapUsed(const MemoryInfo& info) const;
  std::uint64_t readCompressed(const MemoryInfo& info) const;

  LinuxRoots roots_;
  // Large machines have thousands of blocks, a file each: they are counted again only when the memory in use
  // by the kernel changed, as it does when memory is added or removed.
  std::optional<std::uint64_t> totalWhenCounted_;
  std::uint64_t blockMemory_ = 0;
};

}  // namespace tarn
