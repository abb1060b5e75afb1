// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/kernel_clocks.hpp"
#include "platform/linux/procfs/linux_roots.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// Reads the target of a link `/proc/PID/exe`, relative to the open directory, without the kernel's mark for
/// a removed file. One system call. Returns a view into `buffer`; empty when the link cannot be read or its
/// target does not fit.
std::string_view readExecutablePath(int directory, const char* link, std::span<char> buffer);

/// Reads processes from procfs. Every call reads its files again; nothing is kept about any process.
///
/// Makes all system calls for every process in every sweep; therefore the sampler uses it through
/// `SleepingProcessCache`. Not thread-safe. Any call may throw std::bad_alloc; the reader is then unchanged.
class ProcfsReader final : public ProcScan {
 public:
  /// Takes CPU times from the kernel's process clocks if `roots.proc` is the procfs of this pid namespace,
  /// else from the coarser clock ticks in `stat`.
  explicit ProcfsReader(const LinuxRoots& roots);

  /// Takes CPU times from `clock`, and from `stat` where `clock` returns nullopt.
  ProcfsReader(LinuxRoots roots, ProcessClock clock);

  /// Also reads `/proc/swaps`, once per sweep.
  std::vector<std::int32_t> allPIDs() override;

  std::optional<BsdInfo> bsdInfo(std::int32_t pid) override;
  std::string path(std::int32_t pid) override;
  std::optional<ProcessUsage> usage(std::int32_t pid) override;
  SharedText processName(std::int32_t pid) override;

  // Each of the following functions makes one system call or reads the named files. They return nullopt when
  // the process has ended or when a file cannot be read or parsed.

  /// CPU time by the process clock, nanoseconds.
  std::optional<std::uint64_t> readClock(std::int32_t pid) const { return clock_(pid); }

  /// `stat`. The name is a view that is valid until another file than `status` is read.
  std::optional<ProcessStat> readStat(std::int32_t pid);

  /// The real user id in `status`.
  std::optional<std::uint32_t> readOwner(std::int32_t pid);

  /// Anonymous memory, bytes: resident minus shared pages in `statm`, and VmSwap in `status` if swap is in
  /// use. nullopt when that is 1 PiB or more.
  std::optional<std::uint64_t> readFootprint(std::int32_t pid);

  /// The name for display of a user process: `kernelName` completed from `cmdline`.
  std::string readFullName(std::int32_t pid, const std::string& kernelName);

  /// Seconds since the epoch; nullopt when that exceeds 64 bits.
  std::optional<std::uint64_t> startSeconds(const ProcessStat& stat) const;

  /// CPU time by the clock ticks in `stat`, nanoseconds; nullopt when that exceeds 64 bits.
  std::optional<std::uint64_t> tickTime(const ProcessStat& stat) const;

  /// Whether any swap was in use when the latest sweep began.
  bool swapInUse() const { return swapInUse_; }

 private:
  bool openDirectory();
  std::string_view readProcessFile(std::int32_t pid, std::string_view file, std::span<char> buffer);
  std::string_view readStatus(std::int32_t pid);

  LinuxRoots roots_;
  ProcessClock clock_;
  DirectoryStream directory_;
  std::uint64_t
      bootTime_;  // seconds since the epoch; read once, so that setting the clock changes no start time
  std::uint64_t ticksPerSecond_;
  std::uint64_t pageSize_;
  bool swapInUse_ = false;
  std::vector<char> buffer_;  // for all files but `status`
  // `status` may list thousands of groups. The buffer is not initialised, so that unused pages of it take no
  // memory.
  std::unique_ptr<char[]> statusBuffer_;
};

}  // namespace tarn
