// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"

FUZZ_TARGET(process_pages, text) {
  tarn::parseProcessPages(text);
}
