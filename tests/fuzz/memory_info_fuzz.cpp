// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/psi/pressure_level.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using tarn::MemoryPressure;
  const tarn::MemoryInfo memory = tarn::parseMemoryInfo(tarn::textOf(data, size));
  const bool known = memory.total.value_or(0) > 0 && memory.available;
  const auto calm = tarn::pressureLevel(MemoryPressure::normal, memory);
  const auto stalled = tarn::pressureLevel(MemoryPressure::critical, memory);
  tarn::require(calm.has_value() == known && stalled.has_value() == known);
  if (!known) return 0;
  tarn::require(*calm <= *stalled);
  if (*memory.available >= *memory.total) tarn::require(*stalled == MemoryPressure::normal);
  return 0;
}
