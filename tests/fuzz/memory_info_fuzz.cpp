// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/psi/pressure_level.hpp"

FUZZ_TARGET(memory_info, text) {
  using tarn::MemoryPressure;
  const tarn::MemoryInfo memory = tarn::parseMemoryInfo(text);
  const bool known = memory.total.value_or(0) > 0 && memory.available;
  const auto calm = tarn::pressureLevel(MemoryPressure::normal, memory);
  const auto stalled = tarn::pressureLevel(MemoryPressure::critical, memory);
  tarn::require(calm.has_value() == known && stalled.has_value() == known);
  if (!known) return;
  tarn::require(*calm <= *stalled);
  if (*memory.available >= *memory.total) tarn::require(*stalled == MemoryPressure::normal);
}
