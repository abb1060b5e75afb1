// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>

namespace tarn {

/// The kernel's memory-pressure levels; the raw values are the kernel's own level numbers.
enum class MemoryPressure : std::int32_t { normal = 1, warning = 2, critical = 4 };

/// The level with this raw value; nothing for any other number (0, 3, 5 and above, negatives).
std::optional<MemoryPressure> memoryPressureFromRawValue(std::int32_t rawValue);

/// What a reading of the kernel's level means: 4 is critical, 2 is warning; every other number and a
/// failed reading are normal.
MemoryPressure memoryPressureFromReading(std::optional<std::int32_t> reading);

}  // namespace tarn
