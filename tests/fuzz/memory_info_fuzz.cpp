// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/psi/memory_pressure_rules.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto availability = tarn::memoryAvailability(tarn::parseMemoryInfo(tarn::textOf(data, size)));
  if (!availability) return 0;
  tarn::require(availability->availableShare >= 0 && availability->availableShare <= 1);
  tarn::require(availability->freeSwapShare >= 0 && availability->freeSwapShare <= 1);
  return 0;
}
