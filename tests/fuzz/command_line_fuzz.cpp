// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/app_identity/process_facts.hpp"
#include "platform/linux/app_identity/process_signs.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = tarn::textOf(data, size);
  for (const bool isWhole : {false, true}) tarn::scriptOf(tarn::parseArguments(text, isWhole));
  const std::string_view kernelName = text.substr(0, 15);
  const std::string_view name = tarn::completedName(kernelName, text);
  tarn::require(tarn::isWithin(name, text) && name.size() >= kernelName.size());
  tarn::withoutDeletedMark(text);
  return 0;
}
