// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Parsing of the text files of procfs, sysfs and /etc. Words and lines are views into the text.

#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// Parses all of `text` as a number. Returns nullopt for other text and for numbers out of the type's range.
template <typename Number>
std::optional<Number> parseWholeNumber(std::string_view text, int base = 10) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (text.empty() || error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

/// Parses all of `text` as a decimal number not below 0, such as "12.34". Returns nullopt for other text.
std::optional<double> parseDecimal(std::string_view text);

/// Removes the first word from `rest` and returns it; empty when none is left. Words are separated by blanks,
/// tabs and line ends.
std::string_view takeWord(std::string_view& rest);

/// Removes the first line from `rest` and returns it without its line end.
std::string_view takeLine(std::string_view& rest);

/// Parses "NUMBER kB" or "NUMBER" at the beginning of `text`, a number of KiB, and returns bytes. Returns
/// nullopt for another unit or no number, and when the bytes exceed 64 bits.
std::optional<std::uint64_t> parseKibibytes(std::string_view text);

/// Returns `text` with its escape sequences replaced. An escape sequence is `beginning` and then `digits`
/// digits in base `base`, the code of one byte: "\040" in /proc/mounts, "\x20" in the database of udev.
/// Allocates.
std::string withoutEscapes(std::string_view text, std::string_view beginning, std::size_t digits, int base);

/// Counts the CPUs in a list such as "0-3,5" (Documentation/admin-guide/cputopology.rst). Returns nullopt for
/// other text and for more than a million.
std::optional<int> countCpuList(std::string_view text);

}  // namespace tarn
