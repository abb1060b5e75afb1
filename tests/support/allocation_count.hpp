// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

namespace tarn {

/// How often this program has asked for memory so far, by `new`. A program that links this counts, on
/// whichever thread.
std::size_t allocationCount();

template <typename Work>
std::size_t allocationsOf(Work work) {
  const std::size_t before = allocationCount();
  work();
  return allocationCount() - before;
}

}  // namespace tarn
