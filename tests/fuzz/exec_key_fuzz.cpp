// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <string>

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/app_identity/exec_line.hpp"

FUZZ_TARGET(exec_key, text) {
  const auto line = tarn::parseExecLine(std::string(text));
  if (!line) return;
  tarn::require(!line->program.empty());
  tarn::runsOthers(line->program);
}
