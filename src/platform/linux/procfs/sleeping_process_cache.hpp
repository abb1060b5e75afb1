// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/procfs/directory_stream.hpp"
#include "platform/linux/procfs/linux_roots.hpp"
#include "platform/linux/procfs/kernel_clocks.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"
#include "sampling/pid_map.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// The process table below `/proc`.
///
/// A process that has not run since the sweep before costs one system call: its clock says so. Nothing else
/// about it can have changed then: its parent is the same while that lives, and memory of its own is neither
/// gained nor given back by who sleeps, unless the machine swaps. (The kernel may still merge or split pages
/// on its own, so each process is read again in every tenth sweep.) One that has run costs seven: open, read
/// and close of `stat` and `statm`, and its clock.
///
/// Owner and name are kept as long as the process keeps its pid, start time and kernel name; a process that
/// changes its owner without starting another program keeps the old one. Threads of the kernel change their
/// names all the time, and nothing but that changes.
class LinuxProcScan final : public ProcScan {
 public:
  /// Reads the processor clocks of the running kernel where the root is its own process table, else the
  /// coarser clock ticks of `stat`.
  explicit LinuxProcScan(const LinuxRoots& roots);

  /// As above with another clock; `stat` serves where it gives nothing.
  LinuxProcScan(LinuxRoots roots, ProcessClock clock);

  /// Also begins a sweep: forgets the processes that the sweep before did not meet, and looks whether the
  /// machine uses any swap.
  std::vector<std::int32_t> allPIDs() override;

  std::optional<BsdInfo> bsdInfo(std::int32_t pid) override;
  std::string path(std::int32_t pid) override;
  std::optional<ProcessUsage> usage(std::int32_t pid) override;
  SharedText processName(std::int32_t pid) override;

  /// A number that no other process has, and this one no more once it has started another program: its kernel
  /// name is another one then. Nothing for a process that this sweep has not met, nor for a thread of the
  /// kernel, which runs no program. No system call.
  std::optional<std::uint64_t> programOf(std::int32_t pid) const;

  /// How many processes are remembered.
  std::size_t knownProcessCount() const { return known_.size(); }

 private:
  struct KnownProcess {
    std::string kernelName;
    std::optional<SharedText> displayName;  // read when first asked for
    std::uint64_t startTicks = 0;
    std::uint64_t parentStartTicks = 0;      // 0 when the parent was not met before it
    std::uint64_t processorTicks = 0;        // as of the sweep below
    std::optional<std::uint64_t> clockTime;  // nanoseconds, as of the sweep below; nothing without a clock
    std::optional<std::uint64_t> footprint;  // bytes, when it was last asked for
    std::optional<std::uint64_t> clockAtListing;
    std::uint64_t listing = 0;  // the sweep of that, until it is used
    std::uint64_t sweep = 0;    // in which it was last met
    bool isQuiet = false;       // it has not run since the sweep before that
    bool wasMetEarly = false;   // by a child, before its own turn in the sweep
    std::uint64_t program = 0;  // another number for each program; 0 without one
    std::int32_t ppid = 0;
    std::uint32_t owner = 0;
  };

  bool openDirectory();
  std::string_view readProcessFile(std::int32_t pid, std::string_view file, std::span<char> buffer);
  std::string_view readStatus(std::int32_t pid);
  void askClockEarly(std::int32_t pid);
  std::optional<std::uint64_t> clockOf(std::int32_t pid, KnownProcess& known) const;
  KnownProcess* refresh(std::int32_t pid);
  KnownProcess* readAnew(std::int32_t pid);
  bool mayBeQuiet(std::int32_t pid);
  std::uint64_t startOfParent(std::int32_t ppid);
  KnownProcess* metInThisSweep(std::int32_t pid);
  std::optional<std::uint64_t> readFootprint(std::int32_t pid);
  std::optional<std::uint64_t> processorTime(const KnownProcess& process) const;
  std::string readDisplayName(std::int32_t pid, const std::string& kernelName);

  LinuxRoots roots_;
  ProcessClock clock_;
  DirectoryStream directory_;
  std::uint64_t bootTime_;  // seconds since the epoch; read once, so that a clock step renames no process
  std::uint64_t ticksPerSecond_;
  std::uint64_t pageSize_;
  std::uint64_t sweep_ = 0;
  std::uint64_t programs_ = 0;  // met so far
  int parentDepth_ = 0;         // parents that are being met for their children's sake
  bool swapInUse_ = false;
  PidMap<KnownProcess> known_;
  std::vector<char> buffer_;  // for the short files
  // `status` can hold a list of thousands of groups. What is not used of it takes no memory: it is not filled
  // beforehand.
  std::unique_ptr<char[]> statusBuffer_;
};

}  // namespace tarn
