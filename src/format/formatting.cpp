// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "format/formatting.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace tarn {

namespace {

constexpr std::int64_t secondsPerMinute = 60;
constexpr std::int64_t secondsPerHour = 3600;
constexpr std::int64_t secondsPerDay = 86400;

/// Ungrouped decimal digits. Rounds halves away from zero.
std::string plainPercent(double percent) {
  std::array<char, 400> digits{};  // the largest double has 309 digits
  const int length = std::snprintf(digits.data(), digits.size(), "%.0f%%", std::round(percent));
  return {digits.data(), static_cast<std::size_t>(length)};
}

std::string withUnit(std::int64_t count, const char* unit) {
  return std::to_string(count) + ' ' + unit + (count == 1 ? "" : "s");
}

std::int64_t wholeSeconds(double seconds) {
  constexpr double twoToThe63 = 9223372036854775808.0;
  if (!(seconds >= 0)) return 0;  // also NaN
  if (seconds >= twoToThe63) std::abort();
  return static_cast<std::int64_t>(seconds);
}

}  // namespace

std::string ByteFormatting::string(std::uint64_t byteCount, const ByteCountFormatter& formatter) {
  constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return formatter.string(static_cast<std::int64_t>(std::min(byteCount, largest)));
}

std::string CPUFormatting::string(double percentOfOneCore, const PercentFormatter& formatter) {
  const double clamped = percentOfOneCore >= 0.5 ? percentOfOneCore : 0.0;  // NaN becomes 0
  return formatter.string(clamped / 100.0).value_or(plainPercent(clamped));
}

std::string UptimeFormatting::string(double seconds) {
  const std::int64_t total = wholeSeconds(seconds);
  const std::int64_t days = total / secondsPerDay;
  const std::int64_t rest = total - days * secondsPerDay;
  const std::int64_t hours = rest / secondsPerHour;
  if (days >= 1) return withUnit(days, "day") + ", " + withUnit(hours, "hour");

  const std::string minutes = std::to_string(total % secondsPerHour / secondsPerMinute) + " min";
  return rest < secondsPerHour ? minutes : withUnit(hours, "hour") + ", " + minutes;
}

}  // namespace tarn
