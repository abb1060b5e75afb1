// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/linux_system_memory_reader.hpp"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

using Amount = std::optional<std::uint64_t>;

/// Sum of what is there; nothing when it exceeds 64 bits.
Amount sumOf(std::initializer_list<Amount> amounts) {
  std::uint64_t sum = 0;
  for (const Amount& amount : amounts) {
    if (__builtin_add_overflow(sum, amount.value_or(0), &sum)) return std::nullopt;
  }
  return sum;
}

/// The difference, not below 0; 0 when either side is not known.
std::uint64_t difference(const Amount& from, const Amount& less) {
  return from && less ? *from - std::min(*from, *less) : 0;
}

/// Calls `visit` with the path of each entry that is named by the stem and a number.
template <typename Visit>
void forEachNumbered(const std::string& path, std::string_view stem, Visit visit) {
  const DirectoryStream directory(::opendir(path.c_str()));
  if (!directory) return;
  while (const dirent* const entry = ::readdir(directory.get())) {
    const std::string_view name = static_cast<const char*>(entry->d_name);
    if (!name.starts_with(stem) || !parseWholeNumber<unsigned>(name.substr(stem.size()))) continue;
    visit((path + '/').append(name));
  }
}

/// The first word of a short file; valid until the buffer is used again.
std::string_view firstWordOf(const std::string& path, std::span<char> buffer) {
  std::string_view text = readOnce(AT_FDCWD, path.c_str(), buffer);
  return takeWord(text);
}

/// Bytes in memory blocks that are online; 0 when that cannot be told.
std::uint64_t readBlockMemory(const std::string& directory) {
  constexpr int hexadecimal = 16;
  // There are hundreds of blocks: each is asked with as little ado as can be.
  std::array<char, 64> buffer{};
  const auto blockSize =
      parseWholeNumber<std::uint64_t>(firstWordOf(directory + "/block_size_bytes", buffer), hexadecimal);
  if (!blockSize) return 0;
  std::uint64_t blocks = 0;
  forEachNumbered(directory, "memory", [&](const std::string& block) {
    if (firstWordOf(block + "/online", buffer) == "1") ++blocks;
  });
  std::uint64_t bytes = 0;
  return __builtin_mul_overflow(blocks, *blockSize, &bytes) ? 0 : bytes;
}

/// What can be neither paged out nor dropped. What remains when everything else is taken away also holds
/// what no counter names: memory of drivers, huge pages, caches of foreign file systems.
std::uint64_t wiredMemory(const MemoryInfo& info, std::uint64_t compressed) {
  if (!info.total || !info.free) return 0;
  return difference(sumOf({info.total, info.locked}),
                    sumOf({info.free, info.buffers, info.cached, info.swapCached, info.anonymous,
                           info.reclaimableSlab, compressed}));
}

}  // namespace

LinuxSystemMemoryReader::LinuxSystemMemoryReader(LinuxRoots roots) : roots_(std::move(roots)) {}

std::uint64_t LinuxSystemMemoryReader::totalRAM() {
  return installedMemory(readMemoryInfo());
}

std::uint64_t LinuxSystemMemoryReader::swapUsed() {
  return readSwapUsed(readMemoryInfo());
}

SystemMemory LinuxSystemMemoryReader::read() {
  const MemoryInfo info = readMemoryInfo();
  SystemMemory memory;
  memory.totalRAM = installedMemory(info);
  memory.compressed = readCompressed(info);
  memory.wired = wiredMemory(info, memory.compressed);
  memory.cachedFiles =
      difference(sumOf({info.buffers, info.cached, info.reclaimableSlab}), sumOf({info.sharedMemory}));
  memory.swapUsed = readSwapUsed(info);
  return memory;
}

MemoryInfo LinuxSystemMemoryReader::readMemoryInfo() const {
  return parseMemoryInfo(readFile(roots_.proc + "/meminfo"));
}

std::uint64_t LinuxSystemMemoryReader::installedMemory(const MemoryInfo& info) {
  const std::uint64_t inUse = info.total.value_or(0);
  if (totalWhenCounted_ != inUse) {
    blockMemory_ = readBlockMemory(roots_.sys + "/devices/system/memory");
    totalWhenCounted_ = inUse;
  }
  return std::max(blockMemory_, inUse);
}

std::uint64_t LinuxSystemMemoryReader::readSwapUsed(const MemoryInfo& info) const {
  const SwapUse use = parseSwaps(readFile(roots_.proc + "/swaps"));
  return difference(use.outsideMemory, info.compressedContent.value_or(0));
}

std::uint64_t LinuxSystemMemoryReader::readCompressed(const MemoryInfo& info) const {
  Amount sum = info.compressedPool.value_or(0);
  forEachNumbered(roots_.sys + "/block", "zram", [&](const std::string& device) {
    sum = sum ? sumOf({sum, parseCompressedDeviceMemory(readFile(device + "/mm_stat"))}) : sum;
  });
  return sum.value_or(0);
}

}  // namespace tarn
