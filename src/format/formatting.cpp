// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "format/uptime_formatting.hpp"

#include <cstdint>
#include <cstdlib>

namespace tarn::UptimeFormatting {

namespace {

constexpr std::int64_t secondsPerMinute = 60;
constexpr std::int64_t secondsPerHour = 3600;
constexpr std::int64_t secondsPerDay = 86400;

std::string counted(std::int64_t count, const char* unit) {
  return std::to_string(count) + ' ' + unit + (count == 1 ? "" : "s");
}

std::int64_t wholeSeconds(double seconds) {
  constexpr double beyond64Bits = 9223372036854775808.0;
  if (!(seconds >= 0)) return 0;
  if (seconds >= beyond64Bits) std::abort();
  return static_cast<std::int64_t>(seconds);
}

}  // namespace

std::string string(double seconds) {
  const std::int64_t s = wholeSeconds(seconds);
  const std::int64_t days = s / secondsPerDay;
  const std::int64_t rest = s - days * secondsPerDay;
  const std::int64_t hours = rest / secondsPerHour;
  if (days >= 1) return counted(days, "day") + ", " + counted(hours, "hour");

  const std::string minutes = std::to_string(s % secondsPerHour / secondsPerMinute) + " min";
  return rest < secondsPerHour ? minutes : counted(hours, "hour") + ", " + minutes;
}

}  // namespace tarn::UptimeFormatting
