// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/psi/pressure_level.hpp"

FUZZ_TARGET(memory_info, text) {
  using tarn::MemoryPressure;
  const tarn::MemoryInfo memory = tarn::parseMemoryInfo(text);
  const bool isKnown = memory.total.value_or(0) > 0 && memory.available;
  const auto withoutStalls = tarn::pressureLevel(MemoryPressure::normal, memory);
  const auto withStalls = tarn::pressureLevel(MemoryPressure::critical, memory);
  tarn::require(withoutStalls.has_value() == isKnown && withStalls.has_value() == isKnown);
  if (!isKnown) return;
  tarn::require(*withoutStalls <= *withStalls);
  if (*memory.available >= *memory.total) tarn::require(*withStalls == MemoryPressure::normal);
}
