// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/psi/pressure_level.hpp"

#include <algorithm>

namespace tarn {

namespace {

// Shares of time: 200 ms and 400 ms of two seconds.
constexpr double someStallShare = 0.1;
constexpr double fullStallShare = 0.2;
constexpr std::uint64_t someReportMicros = 200'000;
constexpr std::uint64_t fullReportMicros = 400'000;
constexpr double someStallAverage = 10;
constexpr double fullStallAverage = 20;
constexpr double calmAverage = 5;

// Shares of the memory that is available.
constexpr double scarceWhileSomeStall = 0.5;
constexpr double scarceWhileAllStall = 0.2;
constexpr double scarce = 0.1;
constexpr double exhausted = 0.05;
constexpr double exhaustedSwap = 0.1;

double share(std::uint64_t part, std::uint64_t whole) {
  return whole == 0 ? 0 : std::min(1.0, static_cast<double>(part) / static_cast<double>(whole));
}

}  // namespace

std::optional<MemoryAvailability> memoryAvailability(const MemoryInfo& info) {
  if (!info.total || *info.total == 0 || !info.available) return std::nullopt;
  return MemoryAvailability{share(*info.available, *info.total),
                            share(info.swapFree.value_or(0), info.swapTotal.value_or(0))};
}

StallVerdict stallsBetween(const MemoryStalls& before, const MemoryStalls& after,
                           std::chrono::nanoseconds elapsed) {
  const double micros = std::chrono::duration<double, std::micro>(elapsed).count();
  const auto reaches = [&](const StallLine& from, const StallLine& to, double threshold) {
    return micros > 0 && to.totalMicros > from.totalMicros &&
           static_cast<double>(to.totalMicros - from.totalMicros) >= micros * threshold;
  };
  return {reaches(before.some, after.some, someStallShare), reaches(before.full, after.full, fullStallShare)};
}

StallVerdict StallReports::believed(const StallVerdict& reported, const std::optional<MemoryStalls>& now) {
  const auto isTrue = [](bool cameBefore, const StallLine& atFirst, const StallLine& last,
                         std::uint64_t least) {
    return cameBefore || last.totalMicros >= atFirst.totalMicros + least;
  };
  StallVerdict verdict = reported;
  if (atFirst_ && now) {
    verdict.some &= isTrue(cameBefore_.some, atFirst_->some, now->some, someReportMicros);
    verdict.full &= isTrue(cameBefore_.full, atFirst_->full, now->full, fullReportMicros);
  }
  cameBefore_.some |= reported.some;
  cameBefore_.full |= reported.full;
  return verdict;
}

StallVerdict stallsByAverage(const MemoryStalls& stalls) {
  return {stalls.some.average10 >= someStallAverage, stalls.full.average10 >= fullStallAverage};
}

MemoryPressure pressureOf(const StallVerdict& stalls, const MemoryAvailability& availability) {
  const double available = availability.availableShare;
  if (stalls.full && available < scarceWhileAllStall) return MemoryPressure::critical;
  if (available < exhausted && availability.freeSwapShare < exhaustedSwap) return MemoryPressure::critical;
  // While all tasks wait, some do.
  if ((stalls.some || stalls.full) && available < scarceWhileSomeStall) return MemoryPressure::warning;
  if (available < scarce) return MemoryPressure::warning;
  return MemoryPressure::normal;
}

std::optional<MemoryPressure> pressureAtOnce(const std::optional<MemoryStalls>& stalls,
                                             const std::optional<MemoryAvailability>& availability) {
  if (!availability) return std::nullopt;
  return pressureOf(stalls ? stallsByAverage(*stalls) : StallVerdict{}, *availability);
}

PressureHysteresis::PressureHysteresis(MemoryPressure level, TimePoint now)
    : level_(level), lastWarning_(now), lastCritical_(now) {}

MemoryPressure PressureHysteresis::update(MemoryPressure found, double someAverage10, TimePoint now) {
  if (found >= MemoryPressure::warning) lastWarning_ = now;
  if (found == MemoryPressure::critical) lastCritical_ = now;
  if (found >= level_) return level_ = found;

  const bool calm = someAverage10 < calmAverage;
  const TimePoint lastAtLevel = level_ == MemoryPressure::critical ? lastCritical_ : lastWarning_;
  if (!calm || now - lastAtLevel < quietTime) return level_;
  const bool quietBelow = now - lastWarning_ >= quietTime;
  return level_ = quietBelow ? MemoryPressure::normal : MemoryPressure::warning;
}

}  // namespace tarn
