// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace tarn {

/// Hash map from pid to value. Pids are greater than 0.
///
/// Entries lie in one vector in insertion order. A sweep looks up pids in the order in which it inserted
/// them, so its accesses are sequential. A separate open-addressing table with linear probing maps pids to
/// indexes of that vector. `clear` keeps both allocations. Inserting or erasing invalidates pointers to
/// values.
template <typename Value>
class PidMap {
 public:
  std::size_t size() const { return entries_.size(); }
  bool contains(std::int32_t pid) const { return find(pid) != nullptr; }

  /// Null when the map has no value for `pid`, or when `pid` is not greater than 0.
  const Value* find(std::int32_t pid) const {
    if (entries_.empty() || pid <= 0) return nullptr;
    const Slot& slot = slots_[slotOf(pid)];
    return slot.pid == pid ? &entries_[slot.index].value : nullptr;
  }
  Value* find(std::int32_t pid) { return const_cast<Value*>(std::as_const(*this).find(pid)); }

  /// The value for `pid`, value-initialized if it is new; and whether it is new.
  std::pair<Value*, bool> tryEmplace(std::int32_t pid) {
    reserve(entries_.size() + 1);
    Slot& slot = slots_[slotOf(pid)];
    if (slot.pid == pid) return {&entries_[slot.index].value, false};
    slot = {pid, static_cast<std::uint32_t>(entries_.size())};
    return {&entries_.emplace_back(Entry{pid, Value{}}).value, true};
  }
  Value& operator[](std::int32_t pid) { return *tryEmplace(pid).first; }

  /// Moves the last entry to the index of the erased one.
  void erase(std::int32_t pid) {
    if (!contains(pid)) return;
    const std::size_t freed = slotOf(pid);
    Entry& erased = entries_[slots_[freed].index];
    if (&erased != &entries_.back()) {
      slots_[slotOf(entries_.back().pid)].index = slots_[freed].index;
      erased = std::move(entries_.back());
    }
    entries_.pop_back();
    freeSlot(freed);
  }

  /// Erases all entries for which `isObsolete(pid, value)`. The others keep their order.
  template <typename Predicate>
  void eraseIf(Predicate isObsolete) {
    if (std::erase_if(entries_, [&](const Entry& entry) { return isObsolete(entry.pid, entry.value); }) > 0) {
      rebuildSlots();
    }
  }

  /// Allocates memory for `count` entries. The map is unchanged if this throws std::bad_alloc.
  void reserve(std::size_t count) {
    if (count * 2 <= slots_.size()) return;
    constexpr std::size_t minimumSlots = 16;
    const std::size_t slotCount = std::bit_ceil(std::max(minimumSlots, count * 2));
    entries_.reserve(slotCount / 2);
    slots_.resize(slotCount);
    shift_ = 32 - std::countr_zero(slots_.size() / slotsPerLine);
    rebuildSlots();
  }

  /// Erases all entries and keeps the allocated memory.
  void clear() {
    entries_.clear();
    std::fill(slots_.begin(), slots_.end(), Slot());
  }

 private:
  struct Entry {
    std::int32_t pid;
    Value value;
  };
  struct Slot {
    std::int32_t pid = 0;     // 0 in a free slot
    std::uint32_t index = 0;  // in entries_
  };

  static constexpr std::uint32_t slotsPerLine = 64 / sizeof(Slot);  // a cache line has 64 bytes

  std::size_t after(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }

  /// The slot where probing for `pid` begins. Consecutive pids are usually looked up in sequence, so
  /// eight consecutive pids share a cache line. Fibonacci hashing (multiplication by 2^32 divided by the
  /// golden ratio) spreads the cache lines.
  std::size_t firstSlotOf(std::int32_t pid) const {
    constexpr std::uint32_t fibonacciMultiplier = 2654435769;
    const auto number = static_cast<std::uint32_t>(pid);
    const std::uint32_t line = ((number / slotsPerLine) * fibonacciMultiplier) >> shift_;
    return line * slotsPerLine + number % slotsPerLine;
  }

  /// The slot that contains `pid`, else the free slot for it. Terminates because at least half of the slots
  /// are free.
  std::size_t slotOf(std::int32_t pid) const {
    std::size_t slot = firstSlotOf(pid);
    while (slots_[slot].pid != 0 && slots_[slot].pid != pid) slot = after(slot);
    return slot;
  }

  /// Frees a slot and moves later slots of the same probe sequence back, so that no tombstones are needed.
  void freeSlot(std::size_t freed) {
    for (std::size_t next = after(freed); slots_[next].pid != 0; next = after(next)) {
      const std::size_t distance = (next - firstSlotOf(slots_[next].pid)) & (slots_.size() - 1);
      if (distance < ((next - freed) & (slots_.size() - 1))) continue;
      slots_[freed] = slots_[next];
      freed = next;
    }
    slots_[freed] = Slot();
  }

  void rebuildSlots() {
    std::fill(slots_.begin(), slots_.end(), Slot());
    for (std::uint32_t index = 0; index < entries_.size(); ++index) {
      slots_[slotOf(entries_[index].pid)] = {entries_[index].pid, index};
    }
  }

  std::vector<Entry> entries_;
  std::vector<Slot> slots_;  // its size is a power of two
  int shift_ = 31;           // hash >> shift_ is the number of a cache line in slots_
};

}  // namespace tarn
