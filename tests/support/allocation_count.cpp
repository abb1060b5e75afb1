// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "support/allocation_count.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations = 0;
std::atomic<std::size_t> bytes = 0;

/// What this thread is to be refused.
struct Refusal {
  std::size_t left = 0;  ///< allocations until then; 0 without a refusal
  bool isLasting = false;
  bool happened = false;
};
thread_local constinit Refusal refusal;

bool isRefused() {
  if (refusal.left == 0) return false;
  if (refusal.left > 1) {
    --refusal.left;
    return false;
  }
  if (refusal.happened && !refusal.isLasting) return false;
  refusal.happened = true;
  return true;
}

void* allocate(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  bytes.fetch_add(size, std::memory_order_relaxed);
  return isRefused() ? nullptr : std::malloc(size);
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

RefusedAllocation::RefusedAllocation(std::size_t number, bool isLasting) {
  refusal = {.left = number, .isLasting = isLasting};
}

RefusedAllocation::~RefusedAllocation() {
  refusal = {};
}

bool RefusedAllocation::happened() const {
  return refusal.happened;
}

}  // namespace tarn
