// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <string>

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/app_identity/desktop_entry.hpp"

FUZZ_TARGET(exec_key, text) {
  const auto command = tarn::parseExecKey(std::string(text));
  if (!command) return;
  tarn::require(!command->program.empty());
  tarn::isLauncher(command->program);
}
