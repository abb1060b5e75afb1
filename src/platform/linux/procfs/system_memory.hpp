// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The kernel's files about the whole machine's memory, as records.

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarn {

/// What Tarn needs of `/proc/meminfo`, in bytes. A field that is missing or unreadable has no value.
struct MemoryInfo {
  std::optional<std::uint64_t> total;
  std::optional<std::uint64_t> free;
  std::optional<std::uint64_t> available;
  std::optional<std::uint64_t> buffers;
  std::optional<std::uint64_t> cached;
  std::optional<std::uint64_t> swapCached;
  std::optional<std::uint64_t> anonymous;
  std::optional<std::uint64_t> reclaimableSlab;
  std::optional<std::uint64_t> sharedMemory;
  std::optional<std::uint64_t> locked;
  std::optional<std::uint64_t> swapTotal;
  std::optional<std::uint64_t> swapFree;
  std::optional<std::uint64_t> compressedPool;     ///< what the compressed swap cache occupies
  std::optional<std::uint64_t> compressedContent;  ///< what it holds, uncompressed; counted as used swap too
};

MemoryInfo parseMemoryInfo(std::string_view text);

/// What `/proc/swaps` says is in use, in bytes.
struct SwapUse {
  std::uint64_t used = 0;           ///< of all swap devices and files
  std::uint64_t outsideMemory = 0;  ///< without the devices that keep pages compressed in memory
};

/// Lines that do not parse count as no use.
SwapUse parseSwaps(std::string_view text);

/// The memory that a compressed memory device occupies, bytes: column 3 of its `mm_stat`.
std::optional<std::uint64_t> parseCompressedDeviceMemory(std::string_view text);

/// How many processors a list such as "0-3,5" names; nothing for other text, and for an absurd number.
std::optional<int> countProcessorList(std::string_view text);

}  // namespace tarn
