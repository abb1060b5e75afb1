// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <unicode/locid.h>
#include <unicode/numberformatter.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "format/formatting.hpp"

namespace tarn {

/// The locale for figures that the environment names (LC_ALL, else LC_NUMERIC, else LANG); United States
/// English where it names none, or the C locale, which has no grouping and no percent pattern of its own.
icu::Locale figureLocale();

/// Byte counts: ICU's digits, grouping and decimal mark, and unit words of our own.
class IcuByteCountFormatter final : public ByteCountFormatter {
 public:
  explicit IcuByteCountFormatter(const icu::Locale& locale);
  std::string string(std::int64_t byteCount) const override;

 private:
  static constexpr int mostFractionDigits = 2;
  /// One number format for each count of fraction digits.
  std::array<icu::number::LocalizedNumberFormatter, mostFractionDigits + 1> numbers_;
};

/// Whole percents in the locale's percent pattern.
class IcuPercentFormatter final : public PercentFormatter {
 public:
  explicit IcuPercentFormatter(const icu::Locale& locale);
  std::optional<std::string> string(double fraction) const override;

 private:
  icu::number::LocalizedNumberFormatter percents_;
};

/// Formatters for figureLocale(). The first call of each formatter loads ICU's data, not this function. They
/// live until the process ends. Any thread.
Formatters icuFormatters();

}  // namespace tarn
