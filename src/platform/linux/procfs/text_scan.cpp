// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/text_scan.hpp"

#include <cmath>

namespace tarn {

namespace {
constexpr std::string_view blanks = " \t\n";
}  // namespace

std::optional<double> parseDecimal(std::string_view text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || error != std::errc{} || stop != end || !std::isfinite(number) || number < 0) {
    return std::nullopt;
  }
  return number;
}

std::string_view takeWord(std::string_view& rest) {
  const std::size_t begin = rest.find_first_not_of(blanks);
  if (begin == std::string_view::npos) {
    rest = {};
    return {};
  }
  rest.remove_prefix(begin);
  const std::string_view word = rest.substr(0, rest.find_first_of(blanks));
  rest.remove_prefix(word.size());
  return word;
}

std::string_view takeLine(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return line;
}

std::string withoutEscapes(std::string_view text, std::string_view beginning, std::size_t digits, int base) {
  std::string plain;
  while (!text.empty()) {
    const std::string_view escape = text.substr(0, beginning.size() + digits);
    const bool isEscape = escape.size() == beginning.size() + digits && escape.starts_with(beginning);
    const auto code =
        isEscape ? parseWholeNumber<unsigned char>(escape.substr(beginning.size()), base) : std::nullopt;
    plain += code ? static_cast<char>(*code) : text.front();
    text.remove_prefix(code ? escape.size() : 1);
  }
  return plain;
}

std::optional<std::uint64_t> parseKibibytes(std::string_view text) {
  constexpr std::uint64_t kibibyte = 1024;
  const auto count = parseWholeNumber<std::uint64_t>(takeWord(text));
  const std::string_view unit = takeWord(text);
  std::uint64_t bytes = 0;
  if (!count || (!unit.empty() && unit != "kB") || __builtin_mul_overflow(*count, kibibyte, &bytes)) {
    return std::nullopt;
  }
  return bytes;
}

std::optional<int> countCpuList(std::string_view text) {
  constexpr int mostCpus = 1 << 20;
  std::string_view list = takeWord(text);
  if (list.empty() || !takeWord(text).empty()) return std::nullopt;
  int count = 0;
  for (bool hasMore = true; hasMore;) {
    const std::size_t comma = list.find(',');
    const std::string_view range = list.substr(0, comma);
    hasMore = comma != std::string_view::npos;
    list.remove_prefix(hasMore ? comma + 1 : list.size());

    const std::size_t dash = range.find('-');
    const auto first = parseWholeNumber<int>(range.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : parseWholeNumber<int>(range.substr(dash + 1));
    if (!first || !last || *first < 0 || *last < *first || *last >= mostCpus) return std::nullopt;
    count += *last - *first + 1;
    if (count > mostCpus) return std::nullopt;
  }
  return count;
}

}  // namespace tarn
