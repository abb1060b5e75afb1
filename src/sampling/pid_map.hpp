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

/// Values by pid, in one piece of memory that is kept when the map is cleared: what is known of every process
/// is looked up several times in each sweep. Pids are greater than 0. Values move when another is added or
/// erased.
template <typename Value>
class PidMap {
 public:
  std::size_t size() const { return size_; }
  bool contains(std::int32_t pid) const { return find(pid) != nullptr; }

  /// Null where there is none, as for pids that cannot be.
  const Value* find(std::int32_t pid) const {
    if (size_ == 0 || pid <= 0) return nullptr;
    const Slot& slot = slots_[placeOf(pid)];
    return slot.pid == pid ? &slot.value : nullptr;
  }
  Value* find(std::int32_t pid) { return const_cast<Value*>(std::as_const(*this).find(pid)); }

  /// The value of a pid, a new one if need be; and whether it is new.
  std::pair<Value*, bool> tryEmplace(std::int32_t pid) {
    reserve(size_ + 1);
    Slot& slot = slots_[placeOf(pid)];
    const bool isNew = slot.pid != pid;
    if (isNew) {
      slot.pid = pid;
      ++size_;
    }
    return {&slot.value, isNew};
  }
  Value& operator[](std::int32_t pid) { return *tryEmplace(pid).first; }

  void erase(std::int32_t pid) {
    if (!contains(pid)) return;
    std::size_t hole = placeOf(pid);
    --size_;
    // Whoever was put behind the hole because its own place was taken moves up.
    for (std::size_t next = after(hole); slots_[next].pid != 0; next = after(next)) {
      const std::size_t distance = (next - home(slots_[next].pid)) & (slots_.size() - 1);
      if (distance < ((next - hole) & (slots_.size() - 1))) continue;
      slots_[hole] = std::move(slots_[next]);
      hole = next;
    }
    slots_[hole] = Slot();
  }

  /// Erases all for which `isObsolete(pid, value)`.
  template <typename Predicate>
  void eraseIf(Predicate isObsolete) {
    std::vector<std::int32_t> obsolete;
    for (const Slot& slot : slots_) {
      if (slot.pid != 0 && isObsolete(slot.pid, slot.value)) obsolete.push_back(slot.pid);
    }
    for (const std::int32_t pid : obsolete) erase(pid);
  }

  /// Makes room for so many without moving values.
  void reserve(std::size_t count) {
    if (count * 2 <= slots_.size()) return;
    constexpr std::size_t least = 16;
    std::vector<Slot> before(std::bit_ceil(std::max(least, count * 2)));
    before.swap(slots_);
    shift_ = 32 - std::countr_zero(slots_.size());
    for (Slot& slot : before) {
      if (slot.pid != 0) slots_[placeOf(slot.pid)] = std::move(slot);
    }
  }

  /// Forgets all, and keeps the room.
  void clear() {
    for (Slot& slot : slots_) {
      if (slot.pid != 0) slot = Slot();
    }
    size_ = 0;
  }

 private:
  struct Slot {
    std::int32_t pid = 0;  // 0 where it is free
    Value value{};
  };

  std::size_t after(std::size_t place) const { return (place + 1) & (slots_.size() - 1); }

  /// Pids that follow one another are spread, so that none has to move far from its place.
  std::size_t home(std::int32_t pid) const {
    constexpr std::uint32_t golden = 2654435769;
    return (static_cast<std::uint32_t>(pid) * golden) >> shift_;
  }

  /// Where a pid is, or else the free slot for it. At least half of them are free.
  std::size_t placeOf(std::int32_t pid) const {
    std::size_t place = home(pid);
    while (slots_[place].pid != 0 && slots_[place].pid != pid) place = after(place);
    return place;
  }

  std::vector<Slot> slots_;  // a power of two of them
  int shift_ = 31;           // leaves as many bits as number them
  std::size_t size_ = 0;
};

}  // namespace tarn
