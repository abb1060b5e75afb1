// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/psi/pressure_level.hpp"

FUZZ_TARGET(memory_info, text) {
  const auto availability = tarn::memoryAvailability(tarn::parseMemoryInfo(text));
  if (!availability) return;
  tarn::require(availability->availableShare >= 0 && availability->availableShare <= 1);
  tarn::require(availability->freeSwapShare >= 0 && availability->freeSwapShare <= 1);
}
