// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = tarn::textOf(data, size);
  tarn::parseBootTime(text);
  tarn::require(tarn::countProcessorList(text).value_or(1) > 0);
  return 0;
}
