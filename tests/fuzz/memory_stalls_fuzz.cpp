// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/psi/memory_pressure_rules.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = tarn::textOf(data, size);
  const auto before = tarn::parseMemoryStalls(text.substr(0, size / 2));
  const auto after = tarn::parseMemoryStalls(text);
  constexpr tarn::MemoryAvailability scarce{.availableShare = 0.1, .freeSwapShare = 0};
  tarn::pressureAtOnce(after, scarce);
  if (!before || !after) return 0;
  tarn::pressureOf(tarn::stallsBetween(*before, *after, std::chrono::seconds(2)), scarce);
  tarn::require(!tarn::stallsBetween(*after, *after, std::chrono::seconds(2)).some);
  return 0;
}
