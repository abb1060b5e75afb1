// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Helpers for the kernel's text files. Nothing here allocates: words and lines are views into the text.

#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// The number that `text` is as a whole; nothing for other text and for a number beyond the type's range.
template <typename Number>
std::optional<Number> parseWholeNumber(std::string_view text, int base = 10) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (text.empty() || error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

/// The number not below zero that `text` is as a whole, such as "12.34"; nothing for other text.
std::optional<double> parseDecimal(std::string_view text);

/// Takes the first word off the front of `rest`. Words are separated by blanks, tabs and line ends; empty
/// when none is left.
std::string_view takeWord(std::string_view& rest);

/// Takes the first line off the front of `rest`, without its line end.
std::string_view takeLine(std::string_view& rest);

/// A number of kibibytes, with or without its unit "kB" behind it, in bytes; nothing when that is not what
/// `text` begins with, or when the bytes exceed 64 bits.
std::optional<std::uint64_t> parseKibibytes(std::string_view text);

/// The text with its escapes undone: each is a beginning and so many digits, and stands for one byte.
std::string withoutEscapes(std::string_view text, std::string_view beginning, std::size_t digits, int base);

}  // namespace tarn
