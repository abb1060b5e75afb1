// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/memory_files.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarn::parseCompressedDeviceMemory(tarn::textOf(data, size));
  return 0;
}
