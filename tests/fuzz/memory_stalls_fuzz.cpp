// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/psi/pressure_level.hpp"

FUZZ_TARGET(memory_stalls, text) {
  const auto before = tarn::parseMemoryStalls(text.substr(0, text.size() / 2));
  const auto after = tarn::parseMemoryStalls(text);
  constexpr tarn::MemoryAvailability scarce{.availableShare = 0.1, .freeSwapShare = 0};
  tarn::pressureAtOnce(after, scarce);
  if (!before || !after) return;
  tarn::pressureOf(tarn::stallsBetween(*before, *after, std::chrono::seconds(2)), scarce);
  tarn::require(!tarn::stallsBetween(*after, *after, std::chrono::seconds(2)).some);
}
