// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "support/allocation_count.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations = 0;
std::atomic<std::size_t> bytes = 0;

/// The failure that is planned for this thread.
struct PlannedFailure {
  std::size_t countdown = 0;  ///< 1 at the allocation that fails; 0 when none is planned
  bool isLasting = false;
  bool happened = false;
};
thread_local constinit PlannedFailure failure;

bool shouldFail() {
  if (failure.countdown == 0) return false;
  if (failure.countdown > 1) {
    --failure.countdown;
    return false;
  }
  if (failure.happened && !failure.isLasting) return false;
  failure.happened = true;
  return true;
}

void* allocate(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  bytes.fetch_add(size, std::memory_order_relaxed);
  return shouldFail() ? nullptr : std::malloc(size);
}

}  // namespace

void* operator new(std::size_t size) {
  if (void* const memory = allocate(size)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t& /*nothing*/) noexcept {
  return allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace tarn {

std::size_t allocationCount() {
  return allocations.load(std::memory_order_relaxed);
}

std::size_t allocatedBytes() {
  return bytes.load(std::memory_order_relaxed);
}

FailingAllocation::FailingAllocation(std::size_t number, bool isLasting) {
  failure = {.countdown = number, .isLasting = isLasting};
}

FailingAllocation::~FailingAllocation() {
  failure = {};
}

bool FailingAllocation::happened() const {
  return failure.happened;
}

}  // namespace tarn
