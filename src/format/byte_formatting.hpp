// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <string>

#include "format/formatting.hpp"

namespace tarn::ByteFormatting {

/// A byte count as text, such as "16 GB". Counts beyond the largest signed 64-bit number are shown as that.
std::string string(std::uint64_t byteCount,
                   const ByteCountFormatter& formatter = platformByteCountFormatter());

}  // namespace tarn::ByteFormatting
