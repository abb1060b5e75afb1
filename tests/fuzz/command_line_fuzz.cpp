// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/app_identity/desktop_id_candidates.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"

FUZZ_TARGET(command_line, text) {
  for (const bool isComplete : {false, true}) tarn::scriptPath(tarn::parseArguments(text, isComplete));
  const std::string_view kernelName = text.substr(0, 15);  // the kernel keeps 15 bytes of a name
  const std::string_view name = tarn::completedName(kernelName, text);
  tarn::require(tarn::isWithin(name, text) && name.size() >= kernelName.size());
  tarn::withoutDeletedMark(text);
}
