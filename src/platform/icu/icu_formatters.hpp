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

/// The locale for numbers that the environment specifies: LC_ALL, else LC_NUMERIC, else LANG (man 7 locale).
/// Returns en_US when none is set or the locale is C or POSIX, which have no grouping and no percent pattern.
icu::Locale numberLocale();

/// Digits, grouping and decimal mark come from ICU. Unit words are English.
class IcuByteCountFormatter final : public ByteCountFormatter {
 public:
  explicit IcuByteCountFormatter(const icu::Locale& locale);
  std::string string(std::int64_t byteCount) const override;

 private:
  static constexpr int maxFractionDigits = 2;
  /// The index is the maximum number of fraction digits.
  std::array<icu::number::LocalizedNumberFormatter, maxFractionDigits + 1> numbers_;
};

/// Uses the percent pattern of the locale.
class IcuPercentFormatter final : public PercentFormatter {
 public:
  explicit IcuPercentFormatter(const icu::Locale& locale);
  std::optional<std::string> string(double fraction) const override;

 private:
  icu::number::LocalizedNumberFormatter percents_;
};

/// Formatters for numberLocale(). Each formatter loads ICU's data at its first call, not in this function.
/// They exist until the process ends. Thread: any.
Formatters icuFormatters();

}  // namespace tarn
