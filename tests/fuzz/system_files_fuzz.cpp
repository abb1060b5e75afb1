// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"
#include "platform/linux/procfs/system_memory.hpp"

FUZZ_TARGET(system_files, text) {
  tarn::parseBootTime(text);
  tarn::require(tarn::countProcessorList(text).value_or(1) > 0);
}
