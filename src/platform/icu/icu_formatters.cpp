// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/icu/icu_formatters.hpp"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string_view>

namespace tarn {

namespace {

using icu::number::LocalizedNumberFormatter;
using icu::number::NumberFormatter;
using icu::number::Precision;
using icu::number::Scale;

struct ByteUnit {
  double size;  ///< bytes
  int fractionDigits;
  const char* word;
};

/// Smallest first. GB is the largest unit, so that disks of different size are shown in the same unit.
constexpr std::array<ByteUnit, 4> byteUnits = {{
    {1, 0, "bytes"},
    {1024, 0, "KB"},
    {1024.0 * 1024, 1, "MB"},
    {1024.0 * 1024 * 1024, 2, "GB"},
}};

/// The largest unit of which `byteCount` is at least 1 after rounding.
const ByteUnit& unitFor(double byteCount) {
  std::size_t chosen = 0;
  for (std::size_t next = 1; next < byteUnits.size(); ++next) {
    const ByteUnit& smaller = byteUnits[next - 1];
    // Half a unit of the last shown digit. A count that is closer to the next unit than this would be rounded
    // to 1,024 of the smaller unit.
    const double roundingMargin = 0.5 * std::pow(10.0, -smaller.fractionDigits) * smaller.size;
    if (byteCount >= byteUnits[next].size - roundingMargin) chosen = next;
  }
  return byteUnits[chosen];
}

LocalizedNumberFormatter numberFormatter(const icu::Locale& locale, int fractionDigits) {
  return NumberFormatter::withLocale(locale)
      .precision(Precision::maxFraction(fractionDigits))
      .roundingMode(UNUM_ROUND_HALFEVEN);
}

std::optional<std::string> formatted(const LocalizedNumberFormatter& formatter, double number) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString text = formatter.formatDouble(number, status).toString(status);
  if (U_FAILURE(status) != 0) return std::nullopt;
  std::string utf8;
  text.toUTF8String(utf8);
  return utf8;
}

/// Empty when the variable is not set.
std::string_view environmentValue(const char* variable) {
  const char* value = std::getenv(variable);
  return value == nullptr ? std::string_view{} : std::string_view{value};
}

/// Creates the ICU formatter at the first call, so that the program loads ICU's data only when it needs it.
class LazyByteCountFormatter final : public ByteCountFormatter {
 public:
  std::string string(std::int64_t byteCount) const override {
    static const IcuByteCountFormatter formatter(numberLocale());
    return formatter.string(byteCount);
  }
};

class LazyPercentFormatter final : public PercentFormatter {
 public:
  std::optional<std::string> string(double fraction) const override {
    static const IcuPercentFormatter formatter(numberLocale());
    return formatter.string(fraction);
  }
};

}  // namespace

icu::Locale numberLocale() {
  for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
    const std::string_view value = environmentValue(variable);
    if (value.empty()) continue;
    if (value == "C" || value.starts_with("C.") || value == "POSIX") break;
    return icu::Locale::createCanonical(std::string(value).c_str());
  }
  return icu::Locale::getUS();
}

IcuByteCountFormatter::IcuByteCountFormatter(const icu::Locale& locale)
    : numbers_{numberFormatter(locale, 0), numberFormatter(locale, 1), numberFormatter(locale, 2)} {}

std::string IcuByteCountFormatter::string(std::int64_t byteCount) const {
  const auto count = static_cast<double>(byteCount);
  const ByteUnit& unit = unitFor(count);
  const double value = count / unit.size;
  const auto& format = numbers_[static_cast<std::size_t>(unit.fractionDigits)];
  // ICU fails when its data file is missing.
  const std::string number = formatted(format, value).value_or(std::to_string(std::llround(value)));
  return number + ' ' + (byteCount == 1 ? "byte" : unit.word);
}

IcuPercentFormatter::IcuPercentFormatter(const icu::Locale& locale)
    : percents_(NumberFormatter::withLocale(locale)
                    .unit(icu::NoUnit::percent())
                    .scale(Scale::powerOfTen(2))
                    .precision(Precision::integer())
                    .roundingMode(UNUM_ROUND_HALFEVEN)) {}

std::optional<std::string> IcuPercentFormatter::string(double fraction) const {
  return formatted(percents_, fraction);
}

Formatters icuFormatters() {
  static const LazyByteCountFormatter bytes;
  static const LazyPercentFormatter percents;
  return {bytes, percents};
}

}  // namespace tarn
