// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"

FUZZ_TARGET(process_status, text) {
  tarn::parseRealOwner(text);
  tarn::require(tarn::parseInnermostPid(text).value_or(1) > 0);
  tarn::hasMemory(text);
  tarn::parseSwappedBytes(text);
}
