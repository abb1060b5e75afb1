// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = tarn::textOf(data, size);
  tarn::parseRealOwner(text);
  tarn::require(tarn::parseInnermostPid(text).value_or(1) > 0);
  tarn::hasMemory(text);
  tarn::parseSwappedBytes(text);
  return 0;
}
