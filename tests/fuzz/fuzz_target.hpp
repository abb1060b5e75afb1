// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// What the fuzzer calls with each input. Each program defines one.
// NOLINTNEXTLINE(readability-identifier-naming): that is what it is called there
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace tarn {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Stops the program at what must never be.
inline void require(bool condition) {
  if (!condition) std::abort();
}

/// Whether one text is a part of the other's bytes; the empty text always is.
inline bool isWithin(std::string_view part, std::string_view whole) {
  return part.empty() ||
         (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

}  // namespace tarn
