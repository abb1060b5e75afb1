// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Arithmetic that aborts the program on overflow instead of returning a wrapped result.

#pragma once

#include <cstdint>
#include <cstdlib>

namespace tarn {

inline std::uint64_t checkedAdd(std::uint64_t left, std::uint64_t right) {
  std::uint64_t sum = 0;
  if (__builtin_add_overflow(left, right, &sum)) std::abort();
  return sum;
}

inline std::int64_t checkedAdd(std::int64_t left, std::int64_t right) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(left, right, &sum)) std::abort();
  return sum;
}

inline std::uint64_t checkedMultiply(std::uint64_t left, std::uint64_t right) {
  std::uint64_t product = 0;
  if (__builtin_mul_overflow(left, right, &product)) std::abort();
  return product;
}

/// Aborts the program when `condition`, a precondition of the caller, is false. Active in every build type.
inline void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace tarn
