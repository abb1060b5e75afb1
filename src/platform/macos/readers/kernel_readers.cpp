// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/kernel_readers.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "sampling/checked_arithmetic.hpp"

namespace tarn::macos {

namespace {

// system/kernel_bindings.cpp checks that these values equal the system's constants.
constexpr std::uint32_t allProcesses = 1;  // PROC_ALL_PIDS
constexpr int usageVersion6 = 6;           // RUSAGE_INFO_V6
constexpr int processRecord = 3;           // PROC_PIDTBSDINFO
constexpr int memoryRecord = 4;            // HOST_VM_INFO64

constexpr std::size_t longestPath = 4096;  // PROC_PIDPATHINFO_MAXSIZE, bytes
constexpr std::size_t spareSlots = 16;     // for processes that start between two calls

/// The value of a sysctl; nullopt when it cannot be read or its size is not that of Value.
template <typename Value>
std::optional<Value> readSysctl(const KernelFunctions& kernel, const char* name) {
  Value value = {};
  std::size_t size = sizeof value;
  if (kernel.sysctlByName(name, &value, &size, nullptr, 0) != 0 || size != sizeof value) return std::nullopt;
  return value;
}

}  // namespace

std::vector<std::int32_t> MacProcScan::allPIDs() {
  const int listSize = kernel_.listPIDs(allProcesses, 0, nullptr, 0);
  if (listSize < 1) return {};
  std::vector<std::int32_t> pids(static_cast<std::size_t>(listSize) / sizeof(std::int32_t) + spareSlots);
  const int filled =
      kernel_.listPIDs(allProcesses, 0, pids.data(), static_cast<int>(pids.size() * sizeof(std::int32_t)));
  if (filled < 1) return {};
  pids.resize(std::min(pids.size(), static_cast<std::size_t>(filled) / sizeof(std::int32_t)));
  std::erase_if(pids, [](std::int32_t pid) { return pid <= 0; });
  return pids;
}

std::optional<BsdInfo> MacProcScan::bsdInfo(std::int32_t pid) {
  ProcessRecord record = {};
  constexpr int size = sizeof record;
  if (kernel_.pidInfo(pid, processRecord, 0, &record, size) != size) return std::nullopt;
  require(record.ppid <= static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max()));
  return BsdInfo{static_cast<std::int32_t>(record.ppid), record.uid, record.startSeconds};
}

std::string MacProcScan::path(std::int32_t pid) {
  std::array<char, longestPath> buffer = {};
  if (kernel_.pidPath(pid, buffer.data(), buffer.size()) <= 0) return {};
  return {buffer.data(), ::strnlen(buffer.data(), buffer.size())};
}

std::optional<ProcessUsage> MacProcScan::usage(std::int32_t pid) {
  UsageRecord record = {};
  if (kernel_.pidUsage(pid, usageVersion6, &record) != 0) return std::nullopt;
  return ProcessUsage{record.physicalFootprint, nanoseconds(record.userTime + record.systemTime)};
}

SharedText MacProcScan::processName(std::int32_t /*pid*/) {
  return {};
}

std::uint64_t MacProcScan::nanoseconds(std::uint64_t ticks) {
  std::call_once(timebaseOnce_, [this] { kernel_.timebaseInfo(&timebase_); });
  require(timebase_.denominator != 0);
  return ticks * timebase_.numerator / timebase_.denominator;
}

std::uint64_t MacSystemMemoryReader::totalRAM() {
  return readSysctl<std::uint64_t>(kernel_, "hw.memsize").value_or(0);
}

std::uint64_t MacSystemMemoryReader::swapUsed() {
  return readSysctl<SwapRecord>(kernel_, "vm.swapusage").value_or(SwapRecord{}).used;
}

SystemMemory MacSystemMemoryReader::read() {
  MemoryRecord record = {};
  std::uint32_t words = sizeof record / sizeof(std::uint32_t);
  if (kernel_.hostStatistics(memoryRecord, &record, &words) != 0) record = {};
  SystemMemory memory;
  memory.totalRAM = totalRAM();
  memory.wired = checkedMultiply(record.wiredPages, kernel_.pageSize);
  memory.compressed = checkedMultiply(record.compressorPages, kernel_.pageSize);
  memory.cachedFiles = checkedMultiply(record.externalPages, kernel_.pageSize);
  memory.swapUsed = swapUsed();
  return memory;
}

std::optional<std::int32_t> readPressureLevel(const KernelFunctions& kernel) {
  return readSysctl<std::int32_t>(kernel, "kern.memorystatus_vm_pressure_level");
}

}  // namespace tarn::macos
