// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The memory of the whole machine: parsers of the kernel's files, which accept any bytes, and the reader that
// combines them.

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/linux/procfs/linux_roots.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// Fields of `/proc/meminfo` in bytes (man 5 proc_meminfo; Zswap and Zswapped:
/// Documentation/filesystems/proc.rst). Lines are "Name:  NUMBER kB". A field that is missing or malformed
/// has no value.
struct MemoryInfo {
  std::optional<std::uint64_t> total;            ///< MemTotal: usable memory
  std::optional<std::uint64_t> free;             ///< MemFree
  std::optional<std::uint64_t> available;        ///< MemAvailable: for new programs, without swapping
  std::optional<std::uint64_t> buffers;          ///< Buffers
  std::optional<std::uint64_t> cached;           ///< Cached: page cache, shared memory included
  std::optional<std::uint64_t> swapCached;       ///< SwapCached: in memory and in swap
  std::optional<std::uint64_t> anonymous;        ///< AnonPages
  std::optional<std::uint64_t> reclaimableSlab;  ///< SReclaimable
  std::optional<std::uint64_t> sharedMemory;     ///< Shmem
  std::optional<std::uint64_t> locked;           ///< Mlocked
  std::optional<std::uint64_t> swapTotal;        ///< SwapTotal
  std::optional<std::uint64_t> swapFree;         ///< SwapFree
  std::optional<std::uint64_t> zswap;            ///< Zswap: memory that zswap occupies
  std::optional<std::uint64_t> zswapped;         ///< Zswapped: uncompressed size of what zswap holds
};

MemoryInfo parseMemoryInfo(std::string_view text);

/// Swap in use according to `/proc/swaps`, bytes (man 5 proc_swaps). After a line of titles, one line for
/// each area: Filename Type Size Used Priority, sizes in KiB. Blanks in Filename are escaped as "\040".
struct SwapUse {
  std::uint64_t used = 0;           ///< of all areas
  std::uint64_t outsideMemory = 0;  ///< without zram devices, which keep pages compressed in memory
};

/// Malformed lines count as 0.
SwapUse parseSwaps(std::string_view text);

/// The memory that a zram device occupies, bytes: mem_used_total in `/sys/block/zramN/mm_stat`
/// (Documentation/admin-guide/blockdev/zram.rst). One line: (1) orig_data_size (2) compr_data_size
/// (3) mem_used_total (4) mem_limit (5) mem_used_max (6) same_pages (7) pages_compacted (8) huge_pages ...
std::optional<std::uint64_t> parseZramMemory(std::string_view text);

/// The memory of the machine, from `/proc/meminfo`, `/proc/swaps`, the zram devices and the memory blocks.
/// Reads the files at each call. Not thread-safe.
class LinuxSystemMemoryReader final : public SystemMemoryReader {
 public:
  explicit LinuxSystemMemoryReader(LinuxRoots roots);

  /// Installed memory: the memory blocks that are online (Documentation/admin-guide/mm/memory-hotplug.rst).
  /// MemTotal if there are no blocks or if MemTotal is larger; it does not include what the kernel reserves
  /// at boot.
  std::uint64_t totalRAM() override;

  /// Swap in use on devices and in files, without what zram and zswap keep in memory.
  std::uint64_t swapUsed() override;

  SystemMemory read() override;

 private:
  MemoryInfo readMemoryInfo() const;
  std::uint64_t installedMemory(const MemoryInfo& info);
  std::uint64_t readSwapUsed(const MemoryInfo& info) const;
  std::uint64_t readCompressed(const MemoryInfo& info) const;

  LinuxRoots roots_;
  // Large machines have thousands of blocks with a file each. They are counted again only when MemTotal has
  // changed, as it does when memory is added or removed.
  std::optional<std::uint64_t> totalWhenCounted_;
  std::uint64_t blockMemory_ = 0;
};

}  // namespace tarn
