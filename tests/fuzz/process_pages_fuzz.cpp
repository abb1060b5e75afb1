// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarn::parseProcessPages(tarn::textOf(data, size));
  return 0;
}
