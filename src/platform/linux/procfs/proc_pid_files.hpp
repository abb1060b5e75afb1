// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Parsers of the files below /proc/PID and of /proc/stat, and a search that uses them. The parsers do not
// allocate and accept any bytes.

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// `/proc/PID/stat`, one line (man 5 proc_pid_stat):
///
///   (1) pid (2) comm (3) state (4) ppid (5) pgrp (6) session (7) tty_nr (8) tpgid (9) flags (10) minflt
///   (11) cminflt (12) majflt (13) cmajflt (14) utime (15) stime (16) cutime (17) cstime (18) priority
///   (19) nice (20) num_threads (21) itrealvalue (22) starttime (23) vsize ...
///
/// comm is in parentheses and may itself hold parentheses, blanks and line ends.
struct ProcessStat {
  std::string_view name;  ///< (2) comm, a view into the text. Any bytes, at most 15 for user processes
  bool isZombie = false;  ///< (3) state is Z or X: it has exited
  std::int32_t ppid = 0;  ///< (4) pid of the parent, not negative; 0 when it has none in this pid namespace
  bool isKernelThread = false;    ///< (9) flags has PF_KTHREAD: its name contains its current task
  std::uint64_t userTicks = 0;    ///< (14) utime, clock ticks
  std::uint64_t systemTicks = 0;  ///< (15) stime, clock ticks
  std::uint64_t startTicks = 0;   ///< (22) starttime, clock ticks since boot
};

/// Returns nullopt when the text is cut off, or when a number is malformed or out of its type's range.
std::optional<ProcessStat> parseProcessStat(std::string_view text);

/// The target of `/proc/PID/exe` without " (deleted)", which the kernel appends when the file was unlinked
/// (man 5 proc_pid_exe).
std::string_view withoutDeletedMark(std::string_view path);

/// `/proc/PID/statm`, one line (man 5 proc_pid_statm): (1) size (2) resident (3) shared (4) text (5) lib
/// (6) data (7) dt, all in pages.
struct ProcessPages {
  std::uint64_t resident = 0;  ///< (2) in memory
  std::uint64_t shared = 0;    ///< (3) resident pages of files and of shared memory
};

/// Returns nullopt when the text is cut off or a number is malformed.
std::optional<ProcessPages> parseProcessPages(std::string_view text);

// `/proc/PID/status` (man 5 proc_pid_status), lines of "Key:\tvalue":
//
//   Uid:    real, effective, saved set and file system user id
//   NSpid:  pid in each nested pid namespace, the innermost last
//   VmSize: size of the address space, kB; only for processes that have one
//   VmSwap: anonymous private memory in swap, kB; also only for processes with an address space

/// The first number of "Uid:".
std::optional<std::uint32_t> parseRealOwner(std::string_view status);

/// The last number of "NSpid:": the pid of the process in its own pid namespace.
std::optional<std::int32_t> parseInnermostPid(std::string_view status);

/// Whether there is a "VmSize:" line. Kernel threads and zombies have none.
bool hasMemory(std::string_view status);

/// "VmSwap:" in bytes; 0 without that line.
std::uint64_t parseSwappedBytes(std::string_view status);

/// The boot time in `/proc/stat`, seconds since the epoch: the line "btime SECONDS" (man 5 proc_stat).
std::optional<std::uint64_t> parseBootTime(std::string_view systemStat);

/// Completes a kernel name (comm) from the command line, because the kernel cuts comm to 15 bytes.
///
/// The last path component of the first argument is used if it begins with `kernelName`. Some programs
/// overwrite their arguments with their state ("postgres: writer"). So the first whitespace after the kernel
/// name ends the name, and a colon at its end is dropped. `commandLine` is the content of
/// `/proc/PID/cmdline`: arguments, each terminated by a zero byte (man 5 proc_pid_cmdline). Pass an empty
/// text when its first argument is cut off.
std::string_view completedName(std::string_view kernelName, std::string_view commandLine);

/// Finds the process that declares the pid `declared`, for example in the window property _NET_WM_PID. A
/// sandboxed process declares its pid in its own pid namespace; the result is its pid in the namespace of
/// Tarn. Only user processes of the user `owner` are considered. Returns nullopt when no process or more than
/// one matches, and when `deadline` passes. `proc` is the path of a procfs. Any thread.
std::optional<std::int32_t> resolveNamespacedPid(const std::string& proc, std::int32_t declared,
                                                 std::uint32_t owner,
                                                 std::chrono::steady_clock::time_point deadline);

}  // namespace tarn
