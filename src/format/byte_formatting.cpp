// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "format/byte_formatting.hpp"

#include <algorithm>
#include <limits>

namespace tarn::ByteFormatting {

std::string string(std::uint64_t byteCount, const ByteCountFormatter& formatter) {
  constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return formatter.string(static_cast<std::int64_t>(std::min(byteCount, largest)));
}

}  // namespace tarn::ByteFormatting
