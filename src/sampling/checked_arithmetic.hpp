// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <cstdlib>

namespace tarn {

/// Sum of two byte counts. A sum that does not fit stops the program: a wrapped figure would be a lie.
inline std::uint64_t checkedAdd(std::uint64_t left, std::uint64_t right) {
  std::uint64_t sum = 0;
  if (__builtin_add_overflow(left, right, &sum)) std::abort();
  return sum;
}

/// Sum of two counts of things; likewise.
inline std::int64_t checkedAdd(std::int64_t left, std::int64_t right) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(left, right, &sum)) std::abort();
  return sum;
}

/// Product of a count and a size in bytes; likewise.
inline std::uint64_t checkedMultiply(std::uint64_t left, std::uint64_t right) {
  std::uint64_t product = 0;
  if (__builtin_mul_overflow(left, right, &product)) std::abort();
  return product;
}

/// Stops the program when a caller broke a contract.
inline void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace tarn
