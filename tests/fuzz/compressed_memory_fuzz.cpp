// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/system_memory.hpp"

FUZZ_TARGET(compressed_memory, text) {
  tarn::parseZramMemory(text);
}
