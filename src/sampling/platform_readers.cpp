// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/process_source.hpp"

namespace tarn {

std::optional<std::uint64_t> ProcScan::footprint(std::int32_t pid) {
  const auto usage = this->usage(pid);
  if (!usage) return std::nullopt;
  return usage->footprint;
}

}  // namespace tarn
