// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/psi/psi_file.hpp"

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

/// Takes the next word off `rest` and returns what follows `key` in it; empty when the word has another key.
std::string_view takeValue(std::string_view& rest, std::string_view key) {
  const std::string_view word = takeWord(rest);
  return word.starts_with(key) ? word.substr(key.size()) : std::string_view{};
}

/// `fields` is a line without its first word.
std::optional<PsiStats::Line> parseFields(std::string_view fields) {
  const auto avg10 = parseDecimal(takeValue(fields, "avg10="));
  takeWord(fields);  // avg60
  takeWord(fields);  // avg300
  const auto total = parseWholeNumber<std::uint64_t>(takeValue(fields, "total="));
  if (!avg10 || !total) return std::nullopt;
  return PsiStats::Line{*avg10, *total};
}

}  // namespace

std::optional<PsiStats> parsePsiStats(std::string_view text) {
  std::optional<PsiStats::Line> some;
  std::optional<PsiStats::Line> full;
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    const std::string_view name = takeWord(line);
    if (name == "some") some = parseFields(line);
    if (name == "full") full = parseFields(line);
  }
  if (!some || !full) return std::nullopt;
  return PsiStats{*some, *full};
}

std::optional<PsiStats> readMemoryPsi(const LinuxRoots& roots) {
  return parsePsiStats(readFile(roots.proc + "/pressure/memory"));
}

}  // namespace tarn
