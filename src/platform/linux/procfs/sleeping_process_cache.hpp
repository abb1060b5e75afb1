// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/procfs/procfs_reader.hpp"
#include "sampling/pid_map.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// The process table for the sampler: a `ProcfsReader` and what it read of each process in the latest sweep.
/// A process that has not run since then keeps its figures at the cost of one system call, the reading of its
/// CPU clock. A process that has run costs seven: the clock, and open, read and close of `stat` and `statm`.
///
/// `allPIDs` begins a sweep and reads all that has changed. Until the next sweep, `bsdInfo`, `usage` and
/// `execId` only look up what was read. `path` reads its link at each call; `processName` reads `cmdline`
/// once for each program. A process without an entry (it has ended, or its files cannot be read) is read
/// through `ProcfsReader`.
///
/// What an entry holds: parent, owner, start time, kernel name, usage, and the CPU clock, which is always
/// read before the files. So a process that runs while its files are read has another clock in the next
/// sweep.
///
/// An entry is reused in a sweep if all of these hold; else `stat` and `statm` are read again:
///   - The process has a clock, and the clock has not moved. Without running, a process changes neither its
///     memory nor its name, and cannot exit. Pid reuse shows here too, as another clock.
///   - Its parent is listed, is no zombie, and has the same start time as when the entry was read. When a
///     parent exits, the kernel gives its children another parent, although they do not run.
///   - The machine uses no swap. The kernel can swap out the memory of sleeping processes.
///   - Its usage was readable at the last reading.
///   - The process is not due. Each process is due in every tenth sweep, because the kernel may merge,
///     split or reclaim pages of sleeping processes (KSM, transparent huge pages, MADV_FREE).
///
/// Owner, full name and execId are read again only when start time or kernel name differ, which for user
/// processes means another process or another program. A process that changes its user and does not execute
/// another program keeps the old owner. Kernel threads change their names often and execute no program: only
/// a different start time identifies another kernel thread.
///
/// An entry that was not reused or read in a sweep counts as absent from then on, and is pruned when the next
/// sweep begins. That applies to processes that are not listed, have ended or cannot be read. An entry is
/// completed before it is marked as part of the sweep, so a sweep that std::bad_alloc ends leaves no
/// incomplete entries.
///
/// Not thread-safe.
class SleepingProcessCache final : public ProcScan {
 public:
  explicit SleepingProcessCache(ProcfsReader reader) : reader_(std::move(reader)) {}

  std::vector<std::int32_t> allPIDs() override;
  std::optional<BsdInfo> bsdInfo(std::int32_t pid) override;
  std::string path(std::int32_t pid) override { return reader_.path(pid); }
  std::optional<ProcessUsage> usage(std::int32_t pid) override;
  SharedText processName(std::int32_t pid) override;

  /// A number for the program that a process executes: no other process has it, and it changes when the
  /// process executes another program (when its kernel name changes). nullopt for kernel threads and for
  /// processes without an entry in this sweep. No system call.
  std::optional<std::uint64_t> execId(std::int32_t pid) const;

  /// The number of entries, including those that the next sweep prunes.
  std::size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    std::string kernelName;
    std::uint64_t startTicks = 0;
    std::optional<std::uint64_t> execId;  // nullopt for a kernel thread
    BsdInfo info;
    bool isZombie = false;
    std::optional<std::uint64_t> clock;        // nanoseconds, read before everything else in this entry
    std::optional<ProcessUsage> usage;         // nullopt if `statm` could not be read
    std::optional<std::uint64_t> parentStart;  // start ticks; nullopt if the parent is not listed or a zombie
    std::optional<SharedText> fullName;        // nullopt until it is first requested
    std::uint64_t sweep = 0;  // sweep of the last reuse or reading; 0 while the entry is invalid
    bool wasRead = false;     // in that sweep, not reused
  };

  bool mayReuse(std::int32_t pid, const Entry& entry, std::optional<std::uint64_t> clock) const;
  void update(std::int32_t pid);
  void checkParent(std::int32_t pid);
  void read(std::int32_t pid, std::optional<std::uint64_t> clock);
  std::optional<std::uint64_t> startOfParent(std::int32_t ppid) const;

  /// The entry of this sweep; null if there is none. Valid until an entry is added.
  const Entry* find(std::int32_t pid) const;
  Entry* find(std::int32_t pid);

  ProcfsReader reader_;
  PidMap<Entry> entries_;
  std::uint64_t sweep_ = 0;
  std::uint64_t lastExecId_ = 0;
};

}  // namespace tarn
