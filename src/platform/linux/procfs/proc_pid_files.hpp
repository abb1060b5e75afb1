// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The files of one process below /proc, as records. The parsers do not allocate.

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarn {

/// What Tarn needs of `/proc/PID/stat`.
struct ProcessStat {
  std::string_view name;  ///< the kernel's name, a view into the text: any bytes, cut at 15 by the kernel
  std::int32_t ppid = 0;  ///< parent pid, not negative
  std::uint64_t userTicks = 0;    ///< processor time in user mode, clock ticks
  std::uint64_t systemTicks = 0;  ///< processor time in the kernel, clock ticks
  std::uint64_t startTicks = 0;   ///< start, clock ticks since the system started
  bool isKernelThread = false;    ///< it runs no program, and is called by what it does at the moment
};

/// Nothing when the text is cut off, when a figure is no number, or when one exceeds its type.
std::optional<ProcessStat> parseProcessStat(std::string_view text);

/// An executable's path without what the kernel adds when its file is gone.
std::string_view withoutDeletedMark(std::string_view path);

/// What Tarn needs of `/proc/PID/statm`, in pages.
struct ProcessPages {
  std::uint64_t resident = 0;  ///< in memory
  std::uint64_t shared = 0;    ///< of these, the pages of files and of shared memory
};

std::optional<ProcessPages> parseProcessPages(std::string_view text);

/// The real owner's user id in `/proc/PID/status`.
std::optional<std::uint32_t> parseRealOwner(std::string_view status);

/// The pid by which a process knows itself, in `/proc/PID/status`: another one than outside for a process in
/// a name space of its own. Nothing without that line.
std::optional<std::int32_t> parseInnermostPid(std::string_view status);

/// Whether `/proc/PID/status` tells of memory: the kernel's own threads, and what has ended, have none.
bool hasMemory(std::string_view status);

/// The process's memory in swap in `/proc/PID/status`, bytes; 0 for what has no memory of its own, such as
/// a kernel thread.
std::uint64_t parseSwappedBytes(std::string_view status);

/// The seconds since the epoch at which the system started, in `/proc/stat`.
std::optional<std::uint64_t> parseBootTime(std::string_view systemStat);

/// The kernel's name of a process, completed from its command line.
///
/// The kernel cuts names after 15 bytes. The first argument's last path component is taken where it begins
/// with the kernel's name. Programs that write their state over their arguments ("postgres: writer") are
/// the reason for two limits: beyond the kernel's name a blank ends the word, and a colon at its end is
/// dropped. `commandLine` is the raw file; give nothing instead of a file whose first argument is cut off.
std::string_view completedName(std::string_view kernelName, std::string_view commandLine);

}  // namespace tarn
