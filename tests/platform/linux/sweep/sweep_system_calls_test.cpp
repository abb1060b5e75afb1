// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What a sweep over this machine's processes costs, as strace sees it.

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <vector>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "support/temporary_tree.hpp"
#include "platform/linux/procfs/text_scan.hpp"
#include "support/idle_processes.hpp"

namespace tarn {
namespace {

/// The files below a process's directory that were opened, and the system calls from the first of them to the
/// next process.
struct ProcessCost {
  std::multiset<std::string> files;
  int calls = 0;
};

struct SweepCost {
  std::map<std::int32_t, ProcessCost> processes;
  int otherCalls = 0;
};

/// The pid and the file in `openat(3, "PID/file", …` or `openat(AT_FDCWD, "/proc/PID/file", …`; nothing for
/// other calls.
std::optional<std::pair<std::int32_t, std::string>> openedFile(std::string_view call) {
  constexpr std::string_view table = "/proc/";
  const std::size_t quote = call.find('"');
  if (call.find("openat(") == std::string_view::npos || quote == std::string_view::npos) return std::nullopt;
  std::string_view path = call.substr(quote + 1, call.find('"', quote + 1) - quote - 1);
  if (path.starts_with(table)) path.remove_prefix(table.size());
  const std::size_t slash = path.find('/');
  const auto pid = parseWholeNumber<std::int32_t>(path.substr(0, slash));
  if (!pid || slash == std::string_view::npos) return std::nullopt;
  return std::pair(*pid, std::string(path.substr(slash + 1)));
}

/// The pid in `clock_gettime(0x…`, the clock of a process; nothing for other calls.
std::optional<std::int32_t> askedClock(std::string_view call) {
  constexpr std::string_view question = "clock_gettime(0x";
  constexpr int hexadecimal = 16;
  const std::size_t begin = call.find(question);
  if (begin == std::string_view::npos) return std::nullopt;
  std::string_view rest = call.substr(begin + question.size());
  rest = rest.substr(0, rest.find_first_not_of("0123456789abcdef"));
  const auto clock = parseWholeNumber<std::uint32_t>(rest, hexadecimal);
  return clock ? std::optional(~(static_cast<std::int32_t>(*clock) >> 3)) : std::nullopt;
}

/// Whose cost a system call is: that of the process it names, else of the one before; null for the whole's.
ProcessCost* payer(std::string_view call, SweepCost& sweep, ProcessCost* before) {
  if (const auto pid = askedClock(call)) return &sweep.processes[*pid];
  if (const auto opened = openedFile(call)) {
    ProcessCost* const process = &sweep.processes[opened->first];
    process->files.insert(opened->second);
    return process;
  }
  const bool isOfTheWhole = call.find("openat(") != std::string_view::npos ||
                            call.find("clock_gettime(CLOCK_") != std::string_view::npos;
  return isOfTheWhole ? nullptr : before;
}

std::vector<SweepCost> traceSweeps(int count) {
  const TemporaryTree tree;
  const std::string log = tree.at("calls").string();
  const std::string command = "ASAN_OPTIONS=detect_leaks=0 strace -f -qq -e 'trace=!%memory' -o '" + log +
                              "' '" TARN_SWEEP_PROCESSES "' " + std::to_string(count);
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
  EXPECT_EQ(std::system(command.c_str()), 0) << "is strace installed? " << command;
  std::vector<SweepCost> sweeps;
  ProcessCost* process = nullptr;
  std::ifstream lines(log);
  for (std::string call; std::getline(lines, call);) {
    if (call.find("/begin-sweep") != std::string::npos) {
      sweeps.emplace_back();
      process = nullptr;
    } else if (!sweeps.empty()) {
      process = payer(call, sweeps.back(), process);
      ++(process != nullptr ? process->calls : sweeps.back().otherCalls);
    }
  }
  sweeps.pop_back();  // what follows the last sweep
  return sweeps;
}

constexpr std::size_t own = 40;  // processes that a test starts, so that there are some

TEST(ASweep, TakesOneSystemCallForAProcessThatSleptAndSevenForOneThatRan) {
  if (parseSwaps(readFile("/proc/swaps")).used > 0) GTEST_SKIP() << "swap is in use: that takes three more";
  const IdleProcesses idle(own);
  const std::vector<SweepCost> sweeps = traceSweeps(4);
  ASSERT_EQ(sweeps.size(), 4U);
  std::size_t slept = 0;
  std::size_t ran = 0;
  std::size_t others = 0;
  for (const auto& [pid, process] : sweeps.back().processes) {
    const bool isKnown = sweeps[2].processes.contains(pid);
    if (isKnown && process.files.empty() && process.calls == 1) {
      ++slept;
    } else if (isKnown && process.files == std::multiset<std::string>{"stat", "statm"} &&
               process.calls == 7) {
      ++ran;
    } else {
      ++others;
    }
  }
  std::printf("1 system call for %zu processes, 7 for %zu; %zu others; %d system calls for the whole\n",
              slept, ran, others, sweeps.back().otherCalls);
  // A tenth of them is due to be read, asleep or not.
  EXPECT_GE(slept, own * 8 / 10);
  EXPECT_GE(ran, 1U) << "the program that sweeps, at least";
  // Processes come and go on a machine that is in use, and start other programs.
  EXPECT_LE(others, (slept + ran) / 10);
  EXPECT_LE(sweeps.back().otherCalls, 60);
}

TEST(ASweep, ReadsMoreOfAProcessOnlyWhenItIsNew) {
  const IdleProcesses idle(own);
  const std::vector<SweepCost> sweeps = traceSweeps(2);
  ASSERT_EQ(sweeps.size(), 2U);
  std::size_t looked = 0;
  for (const auto& [pid, process] : sweeps[0].processes) looked += process.files.count("cgroup");
  EXPECT_GE(looked, own) << "the first sweep looks for the application of each";
  for (const auto& [pid, process] : sweeps[1].processes) {
    const auto before = sweeps[0].processes.find(pid);
    if (before == sweeps[0].processes.end() || process.files.contains("status")) continue;
    EXPECT_FALSE(process.files.contains("cgroup")) << pid;
    EXPECT_FALSE(process.files.contains("cmdline")) << pid;
  }
}

}  // namespace
}  // namespace tarn
