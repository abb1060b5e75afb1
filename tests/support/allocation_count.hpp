// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Replaces the global operators new and delete of the program: counts allocations of all threads, and can
// make allocations of one thread fail.

#pragma once

#include <cstddef>

namespace tarn {

/// Number of allocations of this program so far.
std::size_t allocationCount();

/// Sum of the sizes of these allocations, bytes. Freed memory is not subtracted.
std::size_t allocatedBytes();

template <typename Work>
std::size_t allocationsOf(Work work) {
  const std::size_t before = allocationCount();
  work();
  return allocationCount() - before;
}

/// During the lifetime of this object the `number`-th allocation of this thread, counted from 1, fails with
/// std::bad_alloc. If `isLasting`, all later allocations fail as well. At most one object per thread.
class FailingAllocation {
 public:
  FailingAllocation(std::size_t number, bool isLasting);
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation();

  /// Whether an allocation has failed.
  bool happened() const;
};

}  // namespace tarn
