// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/memory_pressure.hpp"

namespace tarn {

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

}  // namespace tarn
