// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/memory_files.hpp"
#include "platform/linux/procfs/process_files.hpp"

FUZZ_TARGET(system_files, text) {
  tarn::parseBootTime(text);
  tarn::require(tarn::countProcessorList(text).value_or(1) > 0);
}
