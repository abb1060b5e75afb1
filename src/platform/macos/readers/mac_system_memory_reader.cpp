// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/mac_system_memory_reader.hpp"

#include "sampling/checked_arithmetic.hpp"

namespace tarn::macos {

namespace {

constexpr int memoryRecord = 4;

/// The kernel's value of that name; nothing when it has none of that size.
template <typename Value>
std::optional<Value> valueNamed(const SystemFunctions& system, const char* name) {
  Value value = {};
  std::size_t size = sizeof value;
  if (system.sysctlByName(name, &value, &size, nullptr, 0) != 0 || size != sizeof value) return std::nullopt;
  return value;
}

}  // namespace

std::uint64_t MacSystemMemoryReader::totalRAM() {
  return valueNamed<std::uint64_t>(system_, "hw.memsize").value_or(0);
}

std::uint64_t MacSystemMemoryReader::swapUsed() {
  return valueNamed<SwapRecord>(system_, "vm.swapusage").value_or(SwapRecord{}).used;
}

SystemMemory MacSystemMemoryReader::read() {
  MemoryRecord record = {};
  std::uint32_t words = sizeof record / sizeof(std::uint32_t);
  if (system_.hostStatistics(memoryRecord, &record, &words) != 0) record = {};
  SystemMemory memory;
  memory.totalRAM = totalRAM();
  memory.wired = checkedMultiply(record.wiredPages, system_.pageSize);
  memory.compressed = checkedMultiply(record.compressorPages, system_.pageSize);
  memory.cachedFiles = checkedMultiply(record.externalPages, system_.pageSize);
  memory.swapUsed = swapUsed();
  return memory;
}

std::optional<std::int32_t> readPressureLevel(const SystemFunctions& system) {
  return valueNamed<std::int32_t>(system, "kern.memorystatus_vm_pressure_level");
}

}  // namespace tarn::macos
