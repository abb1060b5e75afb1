// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/system_memory.hpp"

#include <algorithm>
#include <array>

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
    MemoryInfoField{"Zswap", &MemoryInfo::compressedPool},
    MemoryInfoField{"Zswapped", &MemoryInfo::compressedContent},
};

bool isCompressedMemoryDevice(std::string_view path) {
  constexpr std::string_view stem = "zram";
  const std::string_view name = path.substr(path.find_last_of('/') + 1);
  return name.starts_with(stem) && parseWholeNumber<unsigned>(name.substr(stem.size())).has_value();
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
  takeLine(text);  // the column titles
  while (!text.empty()) {
    // Blanks in a file name are escaped, so the columns are words.
    std::string_view line = takeLine(text);
    const std::string_view path = takeWord(line);
    takeWord(line);
    takeWord(line);
    const std::uint64_t used = parseKibibytes(takeWord(line)).value_or(0);
    std::uint64_t sum = 0;
    if (__builtin_add_overflow(use.used, used, &sum)) continue;
    use.used = sum;
    if (!isCompressedMemoryDevice(path)) use.outsideMemory += used;
  }
  return use;
}

std::optional<std::uint64_t> parseCompressedDeviceMemory(std::string_view text) {
  takeWord(text);
  takeWord(text);
  return parseWholeNumber<std::uint64_t>(takeWord(text));
}

std::optional<int> countProcessorList(std::string_view text) {
  constexpr int mostProcessors = 1 << 20;
  std::string_view list = takeWord(text);
  if (list.empty() || !takeWord(text).empty()) return std::nullopt;
  int count = 0;
  for (bool more = true; more;) {
    const std::size_t comma = list.find(',');
    const std::string_view range = list.substr(0, comma);
    more = comma != std::string_view::npos;
    list.remove_prefix(more ? comma + 1 : list.size());

    const std::size_t dash = range.find('-');
    const auto first = parseWholeNumber<int>(range.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : parseWholeNumber<int>(range.substr(dash + 1));
    if (!first || !last || *first < 0 || *last < *first || *last >= mostProcessors) return std::nullopt;
    count += *last - *first + 1;
    if (count > mostProcessors) return std::nullopt;
  }
  return count;
}

}  // namespace tarn
