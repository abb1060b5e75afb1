// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "format/cpu_formatting.hpp"

#include <array>
#include <charconv>
#include <cmath>

namespace tarn::CPUFormatting {

namespace {

/// Plain decimal digits for when the platform's formatter has none: no grouping, halves away from zero.
std::string plainPercent(double percent) {
  std::array<char, 400> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), std::round(percent),
                                 std::chars_format::fixed);
  return std::string(digits.data(), end.ptr) + '%';
}

}  // namespace

std::string string(double percentOfOneCore, const PercentFormatter& formatter) {
  // Written so that what is not a number fails the comparison, too.
  const double clamped = percentOfOneCore >= 0.5 ? percentOfOneCore : 0.0;
  return formatter.string(clamped / 100.0).value_or(plainPercent(clamped));
}

}  // namespace tarn::CPUFormatting
