// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"

FUZZ_TARGET(process_stat, text) {
  const auto stat = tarn::parseProcessStat(text);
  if (!stat) return;
  tarn::require(tarn::isWithin(stat->name, text));
  tarn::require(stat->ppid >= 0);
}
