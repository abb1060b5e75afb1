// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/snapshot.hpp"

#include <algorithm>
#include <cstddef>

#include "sampling/checked_arithmetic.hpp"

namespace tarn {

namespace {

/// Indexes of the groups in descending order of the metric. Equal groups keep their order.
std::vector<std::size_t> ranking(const std::vector<AppGroup>& groups, SortMetric metric) {
  std::vector<std::size_t> order(groups.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
    return metric == SortMetric::cpu ? groups[left].cpuPercent > groups[right].cpuPercent
                                     : groups[left].footprint > groups[right].footprint;
  });
  return order;
}

}  // namespace

std::optional<MemoryPressure> memoryPressureFromRawValue(std::int32_t rawValue) {
  switch (rawValue) {
    case 1:
      return MemoryPressure::normal;
    case 2:
      return MemoryPressure::warning;
    case 4:
      return MemoryPressure::critical;
    default:
      return std::nullopt;
  }
}

MemoryPressure memoryPressureFromReading(std::optional<std::int32_t> reading) {
  if (!reading) return MemoryPressure::normal;
  return memoryPressureFromRawValue(*reading).value_or(MemoryPressure::normal);
}

AppGroup AppGroup::withProcessCount(std::int64_t count) const {
  require(count >= 0);
  return {id,        name,       bundlePath,
          footprint, cpuPercent, std::vector<ProcessSample>(static_cast<std::size_t>(count))};
}

std::uint64_t MemorySnapshot::attributedTotal() const {
  std::uint64_t total = 0;
  for (const AppGroup& group : groups) total = checkedAdd(total, group.footprint);
  return total;
}

double MemorySnapshot::totalCPUPercent() const {
  double total = 0;
  for (const AppGroup& group : groups) total += group.cpuPercent;
  return total;
}

TopGroups MemorySnapshot::topGroups(SortMetric by, std::int64_t limit) const {
  const std::vector<std::size_t> order = ranking(groups, by);
  const bool everyGroupFits = limit >= static_cast<std::int64_t>(order.size());
  require(everyGroupFits || limit >= 0);
  const std::size_t shown = everyGroupFits ? order.size() : static_cast<std::size_t>(limit);

  TopGroups top;
  top.rows.reserve(shown);
  for (std::size_t i = 0; i < shown; ++i) top.rows.push_back(groups[order[i]]);
  if (everyGroupFits) return top;

  AppGroup rest{.id = std::string(everythingElseId), .name = "Everything else"};
  std::int64_t count = 0;
  for (std::size_t i = shown; i < order.size(); ++i) {
    const AppGroup& group = groups[order[i]];
    rest.footprint = checkedAdd(rest.footprint, group.footprint);
    rest.cpuPercent += group.cpuPercent;
    count = checkedAdd(count, static_cast<std::int64_t>(group.processCount()));
  }
  top.everythingElse = rest.withProcessCount(count);
  return top;
}

}  // namespace tarn
