// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/psi/pressure_level.hpp"

FUZZ_TARGET(memory_stalls, text) {
  const auto before = tarn::parsePsiStats(text.substr(0, text.size() / 2));
  const auto after = tarn::parsePsiStats(text);
  tarn::MemoryInfo scarce;
  scarce.total = 100;
  scarce.available = 10;
  tarn::require(tarn::pressureLevel(after, scarce).has_value());
  if (!before || !after) return;
  const auto stalls = tarn::stallLevel(*before, *after, std::chrono::seconds(2));
  tarn::require(tarn::pressureLevel(stalls, scarce) == stalls);
  tarn::require(tarn::stallLevel(*after, *after, std::chrono::seconds(2)) == tarn::MemoryPressure::normal);
}
