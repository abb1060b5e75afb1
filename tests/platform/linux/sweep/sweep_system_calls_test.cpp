// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Counts the system calls of a sweep over this machine's processes with strace.

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <vector>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/procfs/text_scan.hpp"
#include "support/idle_processes.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

/// The files of a process that a sweep opened, and the number of system calls for this process.
struct ProcessCalls {
  std::multiset<std::string> files;
  int calls = 0;
};

struct SweepCalls {
  std::map<std::int32_t, ProcessCalls> processes;
  int otherCalls = 0;  ///< that belong to no process
};

/// The pid and the file in `openat(3, "PID/file", …` or `openat(AT_FDCWD, "/proc/PID/file", …`; nullopt for
/// other calls.
std::optional<std::pair<std::int32_t, std::string>> openedFile(std::string_view call) {
  constexpr std::string_view procfs = "/proc/";
  const std::size_t quote = call.find('"');
  if (call.find("openat(") == std::string_view::npos || quote == std::string_view::npos) return std::nullopt;
  std::string_view path = call.substr(quote + 1, call.find('"', quote + 1) - quote - 1);
  if (path.starts_with(procfs)) path.remove_prefix(procfs.size());
  const std::size_t slash = path.find('/');
  const auto pid = parseWholeNumber<std::int32_t>(path.substr(0, slash));
  if (!pid || slash == std::string_view::npos) return std::nullopt;
  return std::pair(*pid, std::string(path.substr(slash + 1)));
}

/// The pid in `clock_gettime(0x…`, which reads the CPU clock of a process; nullopt for other calls. The
/// kernel encodes the pid as the complement of the clock id's upper bits (clock_getcpuclockid(3)).
std::optional<std::int32_t> clockPid(std::string_view call) {
  constexpr std::string_view function = "clock_gettime(0x";
  constexpr int hexadecimal = 16;
  const std::size_t begin = call.find(function);
  if (begin == std::string_view::npos) return std::nullopt;
  std::string_view rest = call.substr(begin + function.size());
  rest = rest.substr(0, rest.find_first_not_of("0123456789abcdef"));
  const auto clock = parseWholeNumber<std::uint32_t>(rest, hexadecimal);
  return clock ? std::optional(~(static_cast<std::int32_t>(*clock) >> 3)) : std::nullopt;
}

/// The process that a system call belongs to: the process that it names, else the process of the previous
/// call. Null for a call that belongs to no process.
ProcessCalls* processOfCall(std::string_view call, SweepCalls& sweep, ProcessCalls* previous) {
  if (const auto pid = clockPid(call)) return &sweep.processes[*pid];
  if (const auto opened = openedFile(call)) {
    ProcessCalls* const process = &sweep.processes[opened->first];
    process->files.insert(opened->second);
    return process;
  }
  const bool belongsToNoProcess = call.find("openat(") != std::string_view::npos ||
                                  call.find("clock_gettime(CLOCK_") != std::string_view::npos;
  return belongsToNoProcess ? nullptr : previous;
}

std::vector<SweepCalls> traceSweeps(int count) {
  const TemporaryTree tree;
  const std::string log = tree.at("calls").string();
  const std::string command = "ASAN_OPTIONS=detect_leaks=0 strace -f -qq -e 'trace=!%memory' -o '" + log +
                              "' '" TARN_SWEEP_PROCESSES "' " + std::to_string(count);
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
  EXPECT_EQ(std::system(command.c_str()), 0) << "is strace installed? " << command;
  std::vector<SweepCalls> sweeps;
  ProcessCalls* process = nullptr;
  std::ifstream lines(log);
  for (std::string call; std::getline(lines, call);) {
    if (call.find("/begin-sweep") != std::string::npos) {
      sweeps.emplace_back();
      process = nullptr;
    } else if (!sweeps.empty()) {
      process = processOfCall(call, sweeps.back(), process);
      ++(process != nullptr ? process->calls : sweeps.back().otherCalls);
    }
  }
  sweeps.pop_back();  // the calls after the last sweep
  return sweeps;
}

constexpr std::size_t idleCount = 40;

TEST(SweepSystemCalls, AreOneForAnIdleProcessAndSevenForOneThatRan) {
  if (parseSwaps(readFile("/proc/swaps")).used > 0)
    GTEST_SKIP() << "swap is in use: a sweep needs three more system calls per process";
  const IdleProcesses idle(idleCount);
  const std::vector<SweepCalls> sweeps = traceSweeps(4);
  ASSERT_EQ(sweeps.size(), 4U);
  std::size_t idleProcesses = 0;
  std::size_t activeProcesses = 0;
  std::size_t otherProcesses = 0;
  for (const auto& [pid, process] : sweeps.back().processes) {
    const bool isKnown = sweeps[2].processes.contains(pid);
    if (isKnown && process.files.empty() && process.calls == 1) {
      ++idleProcesses;
    } else if (isKnown && process.files == std::multiset<std::string>{"stat", "statm"} &&
               process.calls == 7) {
      ++activeProcesses;
    } else {
      ++otherProcesses;
    }
  }
  std::printf("1 system call for %zu processes, 7 for %zu; %zu others; %d system calls for no process\n",
              idleProcesses, activeProcesses, otherProcesses, sweeps.back().otherCalls);
  // In each sweep a tenth of the idle processes is read again.
  EXPECT_GE(idleProcesses, idleCount * 8 / 10);
  EXPECT_GE(activeProcesses, 1U) << "at least the sampling process itself ran";
  // On a machine in use, processes start, exit, and execute other programs.
  EXPECT_LE(otherProcesses, (idleProcesses + activeProcesses) / 10);
  EXPECT_LE(sweeps.back().otherCalls, 60);
}

TEST(SweepSystemCalls, ReadControlGroupAndArgumentsOnlyOfNewProcesses) {
  const IdleProcesses idle(idleCount);
  const std::vector<SweepCalls> sweeps = traceSweeps(2);
  ASSERT_EQ(sweeps.size(), 2U);
  std::size_t cgroupReads = 0;
  for (const auto& [pid, process] : sweeps[0].processes) cgroupReads += process.files.count("cgroup");
  EXPECT_GE(cgroupReads, idleCount) << "the first sweep finds the application of each process";
  for (const auto& [pid, process] : sweeps[1].processes) {
    const auto before = sweeps[0].processes.find(pid);
    if (before == sweeps[0].processes.end() || process.files.contains("status")) continue;
    EXPECT_FALSE(process.files.contains("cgroup")) << pid;
    EXPECT_FALSE(process.files.contains("cmdline")) << pid;
  }
}

}  // namespace
}  // namespace tarn
