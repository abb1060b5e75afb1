// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = tarn::textOf(data, size);
  const auto stat = tarn::parseProcessStat(text);
  if (!stat) return 0;
  tarn::require(tarn::isWithin(stat->name, text));
  tarn::require(stat->ppid >= 0);
  return 0;
}
