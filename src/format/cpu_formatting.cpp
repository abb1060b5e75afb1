// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "format/cpu_formatting.hpp"

#include <array>
#include <cmath>
#include <cstdio>

namespace tarn::CPUFormatting {

namespace {

/// Plain decimal digits for when the platform's formatter has none: no grouping, halves away from zero.
std::string plainPercent(double percent) {
  std::array<char, 400> digits{};  // the largest number has 309
  const int length = std::snprintf(digits.data(), digits.size(), "%.0f%%", std::round(percent));
  return {digits.data(), static_cast<std::size_t>(length)};
}

}  // namespace

std::string string(double percentOfOneCore, const PercentFormatter& formatter) {
  // Written so that what is not a number fails the comparison, too.
  const double clamped = percentOfOneCore >= 0.5 ? percentOfOneCore : 0.0;
  return formatter.string(clamped / 100.0).value_or(plainPercent(clamped));
}

}  // namespace tarn::CPUFormatting
