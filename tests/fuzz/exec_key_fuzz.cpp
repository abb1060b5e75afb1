// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <string>

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/app_identity/exec_line.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto line = tarn::parseExecLine(std::string(tarn::textOf(data, size)));
  if (!line) return 0;
  tarn::require(!line->program.empty());
  tarn::runsOthers(line->program);
  return 0;
}
