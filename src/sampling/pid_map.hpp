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
/// is looked up several times in each sweep. Values lie in the order in which they were added, which for a
/// sweep is that of the process table: what is asked for next is next in memory, too. Pids are greater than
/// 0. Values move when another is added or erased.
template <typename Value>
class PidMap {
 public:
  std::size_t size() const { return entries_.size(); }
  bool contains(std::int32_t pid) const { return find(pid) != nullptr; }

  /// Null where there is none, as for pids that cannot be.
  const Value* find(std::int32_t pid) const {
    if (entries_.empty() || pid <= 0) return nullptr;
    const Slot& slot = slots_[slotOf(pid)];
    return slot.pid == pid ? &entries_[slot.place].value : nullptr;
  }
  Value* find(std::int32_t pid) { return const_cast<Value*>(std::as_const(*this).find(pid)); }

  /// The value of a pid, a new one if need be; and whether it is new.
  std::pair<Value*, bool> tryEmplace(std::int32_t pid) {
    reserve(entries_.size() + 1);
    Slot& slot = slots_[slotOf(pid)];
    if (slot.pid == pid) return {&entries_[slot.place].value, false};
    slot = {pid, static_cast<std::uint32_t>(entries_.size())};
    return {&entries_.emplace_back(Entry{pid, Value{}}).value, true};
  }
  Value& operator[](std::int32_t pid) { return *tryEmplace(pid).first; }

  void erase(std::int32_t pid) {
    if (!contains(pid)) return;
    const std::size_t freed = slotOf(pid);
    Entry& erased = entries_[slots_[freed].place];
    // The last one takes its place.
    if (&erased != &entries_.back()) {
      slots_[slotOf(entries_.back().pid)].place = slots_[freed].place;
      erased = std::move(entries_.back());
    }
    entries_.pop_back();
    closeHole(freed);
  }

  /// Erases all for which `isObsolete(pid, value)`.
  template <typename Predicate>
  void eraseIf(Predicate isObsolete) {
    if (std::erase_if(entries_, [&](const Entry& entry) { return isObsolete(entry.pid, entry.value); }) > 0) {
      numberEntries();
    }
  }

  /// Makes room for so many without moving values.
  void reserve(std::size_t count) {
    if (count * 2 <= slots_.size()) return;
    constexpr std::size_t least = 16;
    const std::size_t slotCount = std::bit_ceil(std::max(least, count * 2));
    // Until there is memory for both nothing is changed.
    entries_.reserve(slotCount / 2);
    slots_.resize(slotCount);
    shift_ = 32 - std::countr_zero(slots_.size() / lineSlots);
    numberEntries();
  }

  /// Forgets all, and keeps the room.
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
    std::int32_t pid = 0;     // 0 where it is free
    std::uint32_t place = 0;  // of its entry
  };

  static constexpr std::uint32_t lineSlots = 64 / sizeof(Slot);

  std::size_t after(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }

  /// Pids that follow one another are asked for one after the other: eight of them share a line of the cache.
  /// Such lines are spread, so that no pid has to move far from its slot.
  std::size_t home(std::int32_t pid) const {
    constexpr std::uint32_t golden = 2654435769;
    const auto number = static_cast<std::uint32_t>(pid);
    const std::uint32_t line = ((number / lineSlots) * golden) >> shift_;
    return line * lineSlots + number % lineSlots;
  }

  /// Where a pid is, or else the free slot for it. At least half of them are free.
  std::size_t slotOf(std::int32_t pid) const {
    std::size_t slot = home(pid);
    while (slots_[slot].pid != 0 && slots_[slot].pid != pid) slot = after(slot);
    return slot;
  }

  /// Frees a slot. Whoever was put behind it because its own was taken moves up.
  void closeHole(std::size_t hole) {
    for (std::size_t next = after(hole); slots_[next].pid != 0; next = after(next)) {
      const std::size_t distance = (next - home(slots_[next].pid)) & (slots_.size() - 1);
      if (distance < ((next - hole) & (slots_.size() - 1))) continue;
      slots_[hole] = slots_[next];
      hole = next;
    }
    slots_[hole] = Slot();
  }

  void numberEntries() {
    std::fill(slots_.begin(), slots_.end(), Slot());
    for (std::uint32_t place = 0; place < entries_.size(); ++place) {
      slots_[slotOf(entries_[place].pid)] = {entries_[place].pid, place};
    }
  }

  std::vector<Entry> entries_;
  std::vector<Slot> slots_;  // a power of two of them
  int shift_ = 31;           // leaves as many bits of a hash as number their lines
};

}  // namespace tarn
