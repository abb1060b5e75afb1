// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/psi/pressure_level.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

namespace tarn {

namespace {

using namespace std::chrono_literals;

/// The kernel gives unprivileged users triggers with windows of a multiple of two seconds only
/// (Documentation/accounting/psi.rst).
constexpr std::chrono::microseconds stallWindow = 2s;

/// The conditions of a level: the stall time on its PSI line reaches `stall` while available memory is below
/// `availableInStall`; or available memory is below `available` while free swap is below `freeSwap`.
struct Threshold {
  MemoryPressure level;
  std::string_view lineName;
  PsiStats::Line PsiStats::*line;
  std::chrono::microseconds stall;  ///< within `stallWindow`
  double avg10;                     ///< percent; replaces `stall` for a single reading
  double availableInStall;          ///< share of MemTotal
  double available;                 ///< share of MemTotal
  double freeSwap;                  ///< share of SwapTotal
};

constexpr double anyFreeSwap = std::numeric_limits<double>::infinity();

/// Highest level first.
constexpr std::array thresholds{
    Threshold{MemoryPressure::critical, "full", &PsiStats::full, 400ms, 20, 0.2, 0.05, 0.1},
    Threshold{MemoryPressure::warning, "some", &PsiStats::some, 200ms, 10, 0.5, 0.1, anyFreeSwap},
};

constexpr std::chrono::seconds quietTime = 15s;
constexpr double quietAvg10 = 5;  // percent; a smaller average of the "some" line is quiet

const Threshold& thresholdOf(MemoryPressure level) {
  return level == MemoryPressure::critical ? thresholds.front() : thresholds.back();
}

double share(std::uint64_t part, std::uint64_t whole) {
  return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

/// Returns the highest level whose threshold matches; normal when none does.
template <typename Matches>
MemoryPressure highestLevel(Matches matches) {
  const auto* const match = std::find_if(thresholds.begin(), thresholds.end(), matches);
  return match == thresholds.end() ? MemoryPressure::normal : match->level;
}

}  // namespace

std::chrono::microseconds stallThreshold(MemoryPressure level) {
  return thresholdOf(level).stall;
}

std::string psiTrigger(MemoryPressure level) {
  const Threshold& threshold = thresholdOf(level);
  return std::string(threshold.lineName) + ' ' + std::to_string(threshold.stall.count()) + ' ' +
         std::to_string(stallWindow.count());
}

MemoryPressure stallLevel(const PsiStats& before, const PsiStats& after, std::chrono::nanoseconds elapsed) {
  const double elapsedMicros = std::chrono::duration<double, std::micro>(elapsed).count();
  return highestLevel([&](const Threshold& threshold) {
    const std::uint64_t totalBefore = (before.*threshold.line).totalMicros;
    const std::uint64_t totalAfter = (after.*threshold.line).totalMicros;
    const double stallShare =
        static_cast<double>(threshold.stall.count()) / static_cast<double>(stallWindow.count());
    return elapsedMicros > 0 && totalAfter > totalBefore &&
           static_cast<double>(totalAfter - totalBefore) >= elapsedMicros * stallShare;
  });
}

MemoryPressure stallLevel(const PsiStats& stats) {
  return highestLevel(
      [&](const Threshold& threshold) { return (stats.*threshold.line).avg10 >= threshold.avg10; });
}

std::optional<MemoryPressure> pressureLevel(MemoryPressure stalls, const MemoryInfo& memory) {
  if (!memory.total || *memory.total == 0 || !memory.available) return std::nullopt;
  const double available = share(*memory.available, *memory.total);
  const double freeSwap = share(memory.swapFree.value_or(0), memory.swapTotal.value_or(0));
  return highestLevel([&](const Threshold& threshold) {
    const bool inStall = stalls >= threshold.level && available < threshold.availableInStall;
    return inStall || (available < threshold.available && freeSwap < threshold.freeSwap);
  });
}

std::optional<MemoryPressure> pressureLevel(const std::optional<PsiStats>& stats, const MemoryInfo& memory) {
  return pressureLevel(stats ? stallLevel(*stats) : MemoryPressure::normal, memory);
}

PressureHysteresis::PressureHysteresis(MemoryPressure level, TimePoint now)
    : level_(level), lastWarning_(now), lastCritical_(now) {}

MemoryPressure PressureHysteresis::update(MemoryPressure current, double someAvg10, TimePoint now) {
  if (current >= MemoryPressure::warning) lastWarning_ = now;
  if (current == MemoryPressure::critical) lastCritical_ = now;
  if (current >= level_) return level_ = current;

  const TimePoint lastAtLevel = level_ == MemoryPressure::critical ? lastCritical_ : lastWarning_;
  if (someAvg10 >= quietAvg10 || now - lastAtLevel < quietTime) return level_;
  const bool quietBelow = now - lastWarning_ >= quietTime;
  return level_ = quietBelow ? MemoryPressure::normal : MemoryPressure::warning;
}

}  // namespace tarn
