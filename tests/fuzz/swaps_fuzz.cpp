// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/procfs/system_memory.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const tarn::SwapUse use = tarn::parseSwaps(tarn::textOf(data, size));
  tarn::require(use.outsideMemory <= use.used);
  return 0;
}
