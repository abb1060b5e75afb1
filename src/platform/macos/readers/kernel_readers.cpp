// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/mac_proc_scan.hpp"

#include <array>
#include <cstring>
#include <limits>

#include "sampling/checked_arithmetic.hpp"

namespace tarn::macos {

namespace {

constexpr std::uint32_t allProcesses = 1;
constexpr int usageVersion6 = 6;
constexpr int processRecord = 3;
constexpr std::size_t longestPath = 4096;
constexpr std::size_t spareSlots = 16;  ///< for processes that start between two calls

}  // namespace

std::vector<std::int32_t> MacProcScan::allPIDs() {
  const int listSize = system_.listPIDs(allProcesses, 0, nullptr, 0);
  if (listSize < 1) return {};
  std::vector<std::int32_t> pids(static_cast<std::size_t>(listSize) / sizeof(std::int32_t) + spareSlots);
  const int filled =
      system_.listPIDs(allProcesses, 0, pids.data(), static_cast<int>(pids.size() * sizeof(std::int32_t)));
  if (filled < 1) return {};
  pids.resize(std::min(pids.size(), static_cast<std::size_t>(filled) / sizeof(std::int32_t)));
  std::erase_if(pids, [](std::int32_t pid) { return pid <= 0; });
  return pids;
}

std::optional<BsdInfo> MacProcScan::bsdInfo(std::int32_t pid) {
  ProcessRecord record = {};
  constexpr int size = sizeof record;
  if (system_.pidInfo(pid, processRecord, 0, &record, size) != size) return std::nullopt;
  require(record.ppid <= static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max()));
  return BsdInfo{static_cast<std::int32_t>(record.ppid), record.uid, record.startSeconds};
}

std::string MacProcScan::path(std::int32_t pid) {
  std::array<char, longestPath> buffer = {};
  if (system_.pidPath(pid, buffer.data(), buffer.size()) <= 0) return {};
  return {buffer.data(), ::strnlen(buffer.data(), buffer.size())};
}

std::optional<ProcessUsage> MacProcScan::usage(std::int32_t pid) {
  UsageRecord record = {};
  if (system_.pidUsage(pid, usageVersion6, &record) != 0) return std::nullopt;
  return ProcessUsage{record.physicalFootprint, nanoseconds(record.userTime + record.systemTime)};
}

SharedText MacProcScan::processName(std::int32_t /*pid*/) {
  return {};
}

std::uint64_t MacProcScan::nanoseconds(std::uint64_t ticks) {
  std::call_once(timebaseOnce_, [this] { system_.timebaseInfo(&timebase_); });
  require(timebase_.denominator != 0);
  return ticks * timebase_.numerator / timebase_.denominator;
}

}  // namespace tarn::macos
