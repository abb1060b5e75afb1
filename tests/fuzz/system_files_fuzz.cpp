// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"
#include "platform/linux/procfs/text_scan.hpp"

FUZZ_TARGET(system_files, text) {
  tarn::parseBootTime(text);
  tarn::require(tarn::countCpuList(text).value_or(1) > 0);
}
