// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// A program that links this counts what it asks for by `new`, on whichever thread, and can refuse it.

#pragma once

#include <cstddef>

namespace tarn {

/// How often this program has asked for memory so far.
std::size_t allocationCount();

/// How many bytes it has asked for so far, whether they are in use or not.
std::size_t allocatedBytes();

template <typename Work>
std::size_t allocationsOf(Work work) {
  const std::size_t before = allocationCount();
  work();
  return allocationCount() - before;
}

/// As long as it lives, this thread's `number`-th allocation, counted from 1, is refused; a lasting one
/// refuses all after it as well. One at a time.
class RefusedAllocation {
 public:
  RefusedAllocation(std::size_t number, bool isLasting);
  RefusedAllocation(const RefusedAllocation&) = delete;
  RefusedAllocation& operator=(const RefusedAllocation&) = delete;
  ~RefusedAllocation();

  /// Whether anything was refused.
  bool happened() const;
};

}  // namespace tarn
