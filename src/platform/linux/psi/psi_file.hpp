// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// /proc/pressure/memory: pressure stall information (PSI), the time that tasks wait for memory.
// Format (Documentation/accounting/psi.rst):
//
//   some avg10=0.12 avg60=0.05 avg300=0.01 total=123456
//   full avg10=0.00 avg60=0.00 avg300=0.00 total=7890
//
//   some                    time in which at least one task waited
//   full                    time in which all non-idle tasks waited
//   avg10, avg60, avg300    share of the last 10, 60 and 300 seconds, percent
//   total                   sum since boot, microseconds

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// The content of a PSI file.
struct PsiStats {
  struct Line {
    double avg10 = 0;               ///< percent
    std::uint64_t totalMicros = 0;  ///< microseconds since boot
  };

  Line some;
  Line full;
};

/// Returns nullopt unless the text has both lines and their fields are numbers.
std::optional<PsiStats> parsePsiStats(std::string_view text);

/// Reads /proc/pressure/memory. Returns nullopt where the kernel has no PSI. Throws std::bad_alloc.
std::optional<PsiStats> readMemoryPsi(const LinuxRoots& roots);

}  // namespace tarn
