// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/system_memory.hpp"

FUZZ_TARGET(swaps, text) {
  const tarn::SwapUse use = tarn::parseSwaps(text);
  tarn::require(use.outsideMemory <= use.used);
}
