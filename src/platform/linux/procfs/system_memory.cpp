// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/system_memory.hpp"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

struct MemoryInfoField {
  std::string_view label;
  std::optional<std::uint64_t> MemoryInfo::*field;
};

constexpr std::array memoryInfoFields{
    MemoryInfoField{"MemTotal", &MemoryInfo::total},
    MemoryInfoField{"MemFree", &MemoryInfo::free},
    MemoryInfoField{"MemAvailable", &MemoryInfo::available},
    MemoryInfoField{"Buffers", &MemoryInfo::buffers},
    MemoryInfoField{"Cached", &MemoryInfo::cached},
    MemoryInfoField{"SwapCached", &MemoryInfo::swapCached},
    MemoryInfoField{"AnonPages", &MemoryInfo::anonymous},
    MemoryInfoField{"SReclaimable", &MemoryInfo::reclaimableSlab},
    MemoryInfoField{"Shmem", &MemoryInfo::sharedMemory},
    MemoryInfoField{"Mlocked", &MemoryInfo::locked},
    MemoryInfoField{"SwapTotal", &MemoryInfo::swapTotal},
    MemoryInfoField{"SwapFree", &MemoryInfo::swapFree},
    MemoryInfoField{"Zswap", &MemoryInfo::zswap},
    MemoryInfoField{"Zswapped", &MemoryInfo::zswapped},
};

bool isZramDevice(std::string_view path) {
  constexpr std::string_view stem = "zram";
  const std::string_view name = path.substr(path.find_last_of('/') + 1);
  return name.starts_with(stem) && parseWholeNumber<unsigned>(name.substr(stem.size())).has_value();
}

using Amount = std::optional<std::uint64_t>;

/// The sum; unknown amounts count as 0. nullopt when the sum exceeds 64 bits.
Amount sumOf(std::initializer_list<Amount> amounts) {
  std::uint64_t sum = 0;
  for (const Amount& amount : amounts) {
    if (__builtin_add_overflow(sum, amount.value_or(0), &sum)) return std::nullopt;
  }
  return sum;
}

/// The difference, not below 0; 0 when an operand is unknown.
std::uint64_t difference(const Amount& minuend, const Amount& subtrahend) {
  return minuend && subtrahend ? *minuend - std::min(*minuend, *subtrahend) : 0;
}

/// Calls `visit` with the path of each directory entry whose name is the stem and a number.
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

/// Returns the bytes in memory blocks that are online; 0 when that cannot be read. `block_size_bytes` is
/// hexadecimal without "0x", and `memoryN/online` is 0 or 1.
std::uint64_t readBlockMemory(const std::string& directory) {
  constexpr int hexadecimal = 16;
  // Read without allocation: machines have hundreds of blocks.
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

/// Memory that can be neither swapped out nor dropped: what is left when free, file-backed, anonymous,
/// reclaimable and compressed memory are subtracted. So it includes memory that has no counter in meminfo:
/// that of drivers, huge pages, and caches of file systems outside the page cache.
std::uint64_t wiredMemory(const MemoryInfo& info, std::uint64_t compressed) {
  if (!info.total || !info.free) return 0;
  return difference(sumOf({info.total, info.locked}),
                    sumOf({info.free, info.buffers, info.cached, info.swapCached, info.anonymous,
                           info.reclaimableSlab, compressed}));
}

}  // namespace

MemoryInfo parseMemoryInfo(std::string_view text) {
  MemoryInfo info;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    const auto* const known =
        std::find_if(memoryInfoFields.begin(), memoryInfoFields.end(),
                     [&](const MemoryInfoField& field) { return field.label == line.substr(0, colon); });
    if (known != memoryInfoFields.end()) info.*(known->field) = parseKibibytes(line.substr(colon + 1));
  }
  return info;
}

SwapUse parseSwaps(std::string_view text) {
  SwapUse use;
  takeLine(text);  // titles
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    const std::string_view path = takeWord(line);
    takeWord(line);  // Type
    takeWord(line);  // Size
    const std::uint64_t used = parseKibibytes(takeWord(line)).value_or(0);
    std::uint64_t sum = 0;
    if (__builtin_add_overflow(use.used, used, &sum)) continue;
    use.used = sum;
    if (!isZramDevice(path)) use.outsideMemory += used;
  }
  return use;
}

std::optional<std::uint64_t> parseZramMemory(std::string_view text) {
  takeWord(text);  // (1) orig_data_size
  takeWord(text);  // (2) compr_data_size
  return parseWholeNumber<std::uint64_t>(takeWord(text));
}

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
  const std::uint64_t total = info.total.value_or(0);
  if (totalWhenCounted_ != total) {
    blockMemory_ = readBlockMemory(roots_.sys + "/devices/system/memory");
    totalWhenCounted_ = total;
  }
  return std::max(blockMemory_, total);
}

std::uint64_t LinuxSystemMemoryReader::readSwapUsed(const MemoryInfo& info) const {
  const SwapUse use = parseSwaps(readFile(roots_.proc + "/swaps"));
  return difference(use.outsideMemory, info.zswapped.value_or(0));
}

std::uint64_t LinuxSystemMemoryReader::readCompressed(const MemoryInfo& info) const {
  Amount sum = info.zswap.value_or(0);
  forEachNumbered(roots_.sys + "/block", "zram", [&](const std::string& device) {
    sum = sum ? sumOf({sum, parseZramMemory(readFile(device + "/mm_stat"))}) : sum;
  });
  return sum.value_or(0);
}

}  // namespace tarn
