// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/sleeping_process_cache.hpp"

#include <utility>

namespace tarn {

std::vector<std::int32_t> SleepingProcessCache::allPIDs() {
  entries_.eraseIf([this](std::int32_t, const Entry& entry) { return entry.sweep != sweep_; });
  ++sweep_;
  std::vector<std::int32_t> pids = reader_.allPIDs();
  for (const std::int32_t pid : pids) update(pid);
  // All entries are updated now, so checkParent finds the start times of all parents.
  for (const std::int32_t pid : pids) checkParent(pid);
  return pids;
}

std::optional<BsdInfo> SleepingProcessCache::bsdInfo(std::int32_t pid) {
  const Entry* const entry = find(pid);
  return entry != nullptr ? entry->info : reader_.bsdInfo(pid);
}

std::optional<ProcessUsage> SleepingProcessCache::usage(std::int32_t pid) {
  const Entry* const entry = find(pid);
  return entry != nullptr ? entry->usage : reader_.usage(pid);
}

SharedText SleepingProcessCache::processName(std::int32_t pid) {
  Entry* const entry = find(pid);
  if (entry == nullptr) return reader_.processName(pid);
  if (!entry->fullName) {
    const bool isKernelThread = !entry->execId;
    entry->fullName = isKernelThread ? entry->kernelName : reader_.readFullName(pid, entry->kernelName);
  }
  return *entry->fullName;
}

std::optional<std::uint64_t> SleepingProcessCache::execId(std::int32_t pid) const {
  const Entry* const entry = find(pid);
  return entry != nullptr ? entry->execId : std::nullopt;
}

/// Reuses or reads the entry of a process; its parent is checked later.
void SleepingProcessCache::update(std::int32_t pid) {
  // A process table that changes while it is listed may list a process twice.
  if (find(pid) != nullptr) return;
  const std::optional<std::uint64_t> clock = reader_.readClock(pid);
  Entry* const entry = entries_.find(pid);
  if (entry != nullptr && mayReuse(pid, *entry, clock)) {
    entry->wasRead = false;
    entry->sweep = sweep_;
  } else {
    read(pid, clock);
  }
}

bool SleepingProcessCache::mayReuse(std::int32_t pid, const Entry& entry,
                                    std::optional<std::uint64_t> clock) const {
  constexpr std::uint64_t sweepsBetween = 10;
  const bool isItsTurn = (sweep_ + static_cast<std::uint64_t>(pid)) % sweepsBetween == 0;
  return clock && clock == entry.clock && entry.usage && !isItsTurn && !reader_.swapInUse();
}

/// Reads a reused entry again if the process may have another parent. Stores the start time of the parent in
/// entries that were read.
void SleepingProcessCache::checkParent(std::int32_t pid) {
  Entry* entry = find(pid);
  if (entry == nullptr) return;
  const bool hasSameParent = entry->parentStart && entry->parentStart == startOfParent(entry->info.ppid);
  if (!entry->wasRead && !hasSameParent) {
    read(pid, entry->clock);
    entry = find(pid);
  }
  if (entry != nullptr && entry->wasRead) entry->parentStart = startOfParent(entry->info.ppid);
}

/// Reads a process. Leaves no valid entry if it has ended or its files cannot be read.
void SleepingProcessCache::read(std::int32_t pid, std::optional<std::uint64_t> clock) {
  Entry* const before = entries_.find(pid);
  if (before != nullptr) before->sweep = 0;
  std::optional<ProcessStat> stat = reader_.readStat(pid);
  if (stat && before != nullptr && stat->startTicks != before->startTicks) {
    // The pid was reused, perhaps after the clock was read.
    clock = reader_.readClock(pid);
    stat = reader_.readStat(pid);
  }
  if (!stat) return;
  const bool isSameProgram = before != nullptr && stat->startTicks == before->startTicks &&
                             (stat->isKernelThread || stat->name == before->kernelName);
  const auto owner = isSameProgram ? before->info.uid : reader_.readOwner(pid);
  const auto start = reader_.startSeconds(*stat);
  if (!owner || !start) return;

  Entry& entry = entries_[pid];
  if (!isSameProgram) entry = Entry();
  if (!entry.execId && !stat->isKernelThread) entry.execId = ++lastExecId_;
  if (entry.kernelName != stat->name) {
    entry.kernelName = stat->name;
    entry.fullName.reset();
  }
  entry.startTicks = stat->startTicks;
  entry.info = {stat->ppid, *owner, *start};
  entry.isZombie = stat->isZombie;
  entry.clock = clock;
  entry.parentStart.reset();
  entry.wasRead = true;
  const auto time = clock ? clock : reader_.tickTime(*stat);
  const auto footprint = reader_.readFootprint(pid);  // after this the name in `stat` is not valid
  entry.usage.reset();
  if (time && footprint) entry.usage = ProcessUsage{*footprint, *time};
  entry.sweep = sweep_;
}

/// The start ticks of a parent, which distinguish it from later processes with its pid. 0 for pid 0, which
/// means no parent.
std::optional<std::uint64_t> SleepingProcessCache::startOfParent(std::int32_t ppid) const {
  if (ppid == 0) return 0;
  const Entry* const parent = find(ppid);
  // The children of a zombie were given to another process when it exited.
  return parent != nullptr && !parent->isZombie ? std::optional(parent->startTicks) : std::nullopt;
}

const SleepingProcessCache::Entry* SleepingProcessCache::find(std::int32_t pid) const {
  const Entry* const entry = entries_.find(pid);
  return entry != nullptr && entry->sweep == sweep_ ? entry : nullptr;
}

SleepingProcessCache::Entry* SleepingProcessCache::find(std::int32_t pid) {
  return const_cast<Entry*>(std::as_const(*this).find(pid));
}

}  // namespace tarn
