// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Compares the cache with the plain reader over thousands of sweeps, in which processes of a generated
// process table start, run, execute programs, exit and are reparented at random. Every figure of every
// process must be equal in every sweep.
//
// The generator does not make changes that the cache cannot detect: another user id or command line with the
// same kernel name. When the kernel changes the memory of a sleeping process, the cache may return the old
// value for at most ten sweeps.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/procfs/procfs_reader.hpp"
#include "platform/linux/procfs/sleeping_process_cache.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

/// A kernel's process table, with files in a temporary tree.
class RandomKernel {
 public:
  struct Process {
    ProcessFixture files;
    std::int32_t ppid = 0;
    std::uint64_t anonymousPages = 0;
    std::uint64_t swappedPages = 0;
    std::optional<std::uint64_t> clock;
    std::uint64_t program = 0;  // another number for each program that is executed; 0 for kernel threads
    bool isZombie = false;
    bool hasReadableMemory = true;
    bool isWritten = false;  // whether the files are up to date

    bool isKernelThread() const { return program == 0; }
  };

  explicit RandomKernel(std::uint32_t seed) : random_(seed) {
    tree_.write("proc/stat", "btime 1700000000\n");
    writeSwaps();
    add(1, 0, false);
    add(2, 0, true);
    for (int i = 0; i < 12; ++i) start();
    writeChanges();
  }

  LinuxRoots roots() const { return tree_.roots(); }
  const std::map<std::int32_t, Process>& processes() const { return processes_; }
  bool swapInUse() const { return swapInUse_; }

  std::optional<std::uint64_t> readClock(std::int32_t pid) const {
    const auto process = processes_.find(pid);
    return process == processes_.end() ? std::nullopt : process->second.clock;
  }

  /// The processes whose memory has changed since the last call while they slept.
  std::set<std::int32_t> takeChangedSleepers() { return std::exchange(changedSleepers_, {}); }

  /// Makes some random changes, as they occur between two sweeps.
  void proceed() {
    changedSleepers_.clear();
    for (int events = number(0, 5); events > 0; --events) oneEvent();
    writeChanges();
  }

 private:
  int number(int lowest, int highest) { return std::uniform_int_distribution(lowest, highest)(random_); }

  void oneEvent() {
    switch (number(0, 15)) {
      case 0:
      case 1:
        return start();
      case 2:
      case 3:
      case 4:
        return forAnyProcess([this](Process& process) { run(process); });
      case 5:
      case 6:
        return forAnyProcess([this](Process& process) { execute(process); });
      case 7:
        return forAnyProcess([this](Process& process) { exit(process); });
      case 8:
        return reapZombies();
      case 9:  // exits and is reaped
        forAnyProcess([this](Process& process) { exit(process); });
        return reapZombies();
      case 10:
        return reusePid();
      case 11:
        if (number(0, 9) == 0) toggleSwap();
        return;
      case 12:
        return forAnyProcess([this](Process& process) { changeMemoryOfSleeper(process); });
      case 13:
        return renameKernelThreads();
      case 14:
        return forAnyProcess([this](Process& process) { swapOut(process); });
      default:
        return forAnyProcess([this](Process& process) { toggleReadableMemory(process); });
    }
  }

  /// Calls `change` for a process other than zombies, kernel threads and pid 1.
  template <typename Change>
  void forAnyProcess(Change change) {
    std::vector<std::int32_t> pids;
    for (const auto& [pid, process] : processes_) {
      if (pid > 2 && !process.isZombie && !process.isKernelThread()) pids.push_back(pid);
    }
    if (!pids.empty()) change(processes_.at(pids[static_cast<std::size_t>(number(1, size(pids))) - 1]));
  }

  static int size(const std::vector<std::int32_t>& pids) { return static_cast<int>(pids.size()); }

  void start() {
    constexpr std::size_t maxProcesses = 20;
    if (processes_.size() >= maxProcesses) return;
    std::int32_t pid = number(3, 60);
    while (processes_.contains(pid)) pid = number(3, 60);
    if (number(0, 5) == 0) return add(pid, 2, true);
    std::int32_t parent = number(0, 3) == 0 ? 1 : 0;
    forAnyProcess([&](const Process& process) { parent = process.files.pid; });
    add(pid, parent, false);
  }

  void add(std::int32_t pid, std::int32_t parent, bool isKernelThread) {
    Process process{.files = {.pid = pid}, .ppid = parent};
    constexpr std::uint32_t kernelThreadFlags = 0x00208040;
    if (isKernelThread) {
      process.files.flags = kernelThreadFlags;
      process.files.name = "kworker/" + std::to_string(pid);
    } else {
      process.program = ++programs_;
      process.files.name = "program" + std::to_string(process.program);
      process.files.commandLine = "/usr/bin/" + process.files.name + std::string("-whole\0", 7);
      process.anonymousPages = static_cast<std::uint64_t>(number(1, 1000));
    }
    process.files.startTicks = startTicks_ += static_cast<std::uint64_t>(number(1, 3)) / 2;
    const bool hasClock = number(0, 9) > 0;
    if (hasClock) process.clock = nextClock();
    processes_[pid] = std::move(process);
  }

  /// Each call returns another value, because real CPU times in nanoseconds are almost never equal.
  std::uint64_t nextClock() { return lastClock_ += static_cast<std::uint64_t>(number(1, 1000)); }

  void run(Process& process) {
    if (process.clock) process.clock = nextClock();
    process.files.userTicks += static_cast<std::uint64_t>(number(0, 2));
    if (number(0, 1) == 0) process.anonymousPages = static_cast<std::uint64_t>(number(1, 1000));
    process.isWritten = false;
  }

  void execute(Process& process) {
    run(process);
    process.program = ++programs_;
    process.files.name = "program" + std::to_string(process.program);
    process.files.commandLine = process.files.name + std::string("-whole\0", 7);
    if (number(0, 1) == 0) {  // a program with the set-user-ID bit
      const std::string user = std::to_string(number(0, 3));
      process.files.owners = user + '\t' + user + '\t' + user + '\t' + user;
    }
  }

  /// Keeps the command line, which is empty for a real zombie: the cache has read it before.
  void exit(Process& process) {
    run(process);
    process.isZombie = true;
    process.anonymousPages = 0;
    process.swappedPages = 0;
    process.hasReadableMemory = true;
    reparentChildrenOf(process);
  }

  /// The children do not run.
  void reparentChildrenOf(const Process& parent) {
    std::int32_t subreaper = 1;
    const auto grandparent = processes_.find(parent.ppid);
    if (grandparent != processes_.end() && !grandparent->second.isZombie && number(0, 1) == 0) {
      subreaper = parent.ppid;
    }
    for (auto& [pid, process] : processes_) {
      if (process.ppid != parent.files.pid) continue;
      process.ppid = subreaper;
      process.isWritten = false;
    }
  }

  void reapZombies() {
    for (auto process = processes_.begin(); process != processes_.end();) {
      if (process->second.isZombie) {
        tree_.remove("proc/" + std::to_string(process->first));
        files_.erase(process->first);
        process = processes_.erase(process);
      } else {
        ++process;
      }
    }
  }

  /// A process exits, and another process gets its pid before the next sweep.
  void reusePid() {
    std::int32_t freed = 0;
    forAnyProcess([&](Process& process) {
      freed = process.files.pid;
      exit(process);
    });
    reapZombies();
    if (freed == 0) return;
    startTicks_ += 1;
    add(freed, 1, false);
  }

  void toggleSwap() {
    swapInUse_ = !swapInUse_;
    if (!swapInUse_) {
      for (auto& [pid, process] : processes_) {
        process.anonymousPages += std::exchange(process.swappedPages, 0);
        process.isWritten = false;
      }
    }
    writeSwaps();
  }

  /// Memory of a sleeping process moves to swap.
  void swapOut(Process& process) {
    if (!swapInUse_) return;
    const std::uint64_t moved = process.anonymousPages / 2;
    process.anonymousPages -= moved;
    process.swappedPages += moved;
    process.isWritten = false;
  }

  void changeMemoryOfSleeper(Process& process) {
    process.anonymousPages += 1000;
    process.isWritten = false;
    changedSleepers_.insert(process.files.pid);
  }

  void renameKernelThreads() {
    for (auto& [pid, process] : processes_) {
      if (!process.isKernelThread() || number(0, 1) == 0) continue;
      run(process);
      process.anonymousPages = 0;
      process.files.name = "kworker/" + std::to_string(number(0, 99));
    }
  }

  /// `statm` becomes unreadable when the process runs, and readable again while it sleeps.
  void toggleReadableMemory(Process& process) {
    if (process.hasReadableMemory) run(process);
    process.hasReadableMemory = !process.hasReadableMemory;
    process.isWritten = false;
  }

  void writeSwaps() {
    tree_.write("proc/swaps", std::string("Filename Type Size Used Priority\n") +
                                  (swapInUse_ ? "/dev/sda2 partition 100000 5000 -2\n" : ""));
  }

  void writeChanges() {
    for (auto& [pid, process] : processes_) {
      if (process.isWritten) continue;
      write(process);
      process.isWritten = true;
    }
  }

  void write(const Process& process) {
    ProcessFixture files = process.files;
    files.ppid = std::to_string(process.ppid);
    std::string stat = files.stat();
    if (process.isZombie) stat.replace(stat.find(") S"), 3, ") Z");
    const auto kibibytes = process.swappedPages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)) / 1024;
    writeFile(files.pid, "stat", stat);
    writeFile(files.pid, "status",
              "Uid:\t" + files.owners + "\nVmSwap:\t" + std::to_string(kibibytes) + " kB\n");
    writeFile(files.pid, "cmdline", files.commandLine);
    // "garbage" has no numbers.
    writeFile(files.pid, "statm",
              process.hasReadableMemory
                  ? "5000 " + std::to_string(process.anonymousPages + 100) + " 100 5 0 123 0\n"
                  : "garbage");
  }

  /// Skips the write if the file already contains the text, because writing files is slow.
  void writeFile(std::int32_t pid, const std::string& name, const std::string& text) {
    std::string& written = files_[pid][name];
    if (written == text) return;
    tree_.write("proc/" + std::to_string(pid) + '/' + name, text);
    written = text;
  }

  TemporaryTree tree_;
  std::mt19937 random_;
  std::map<std::int32_t, Process> processes_;
  std::map<std::int32_t, std::map<std::string, std::string>> files_;  // current content, by pid and name
  std::set<std::int32_t> changedSleepers_;
  std::uint64_t programs_ = 0;
  std::uint64_t startTicks_ = 100;
  std::uint64_t lastClock_ = 0;
  bool swapInUse_ = false;
};

class RandomSweeps : public testing::TestWithParam<std::uint32_t> {
 protected:
  RandomSweeps() { std::printf("seed %u\n", GetParam()); }

  void compareSweep() {
    for (const std::int32_t pid : kernel_.takeChangedSleepers()) mayLag_.try_emplace(pid, sweep_ + 9);
    ++sweep_;
    const std::vector<std::int32_t> pids = reader_.allPIDs();
    ASSERT_EQ(pids.size(), kernel_.processes().size());
    ASSERT_THAT(cache_.allPIDs(), testing::UnorderedElementsAreArray(pids));
    for (const std::int32_t pid : pids) compareProcess(pid);
    // Entries of processes that exited are pruned in the next sweep.
    ASSERT_LE(cache_.size(), pids.size() + previousCount_);
    previousCount_ = pids.size();
  }

  void compareProcess(std::int32_t pid) {
    SCOPED_TRACE("pid " + std::to_string(pid));
    ASSERT_EQ(cache_.bsdInfo(pid), reader_.bsdInfo(pid));
    compareUsage(pid);
    // Reads the name only in every third sweep: the cache reads the command line at the first request.
    if ((sweep_ + static_cast<unsigned>(pid)) % 3 == 0) {
      ASSERT_EQ(cache_.processName(pid), reader_.processName(pid));
    }
    compareProgram(pid);
  }

  void compareUsage(std::int32_t pid) {
    const auto cached = cache_.usage(pid);
    const auto read = reader_.usage(pid);
    if (cached == read) {
      mayLag_.erase(pid);
      return;
    }
    ASSERT_TRUE(cached && read);
    ASSERT_EQ(cached->cpuTime, read->cpuTime);
    ASSERT_TRUE(mayLag_.contains(pid)) << cached->footprint << " instead of " << read->footprint;
    ASSERT_LE(sweep_, mayLag_.at(pid)) << "not read in ten sweeps";
    ASSERT_FALSE(kernel_.swapInUse());
    ++laggingFigures_;
  }

  /// Each program of a process has one execId, and each execId belongs to one program.
  void compareProgram(std::int32_t pid) {
    const std::uint64_t program = kernel_.processes().at(pid).program;
    const auto execId = cache_.execId(pid);
    ASSERT_EQ(execId.has_value(), program != 0);
    if (!execId) return;
    ASSERT_EQ(execIds_.try_emplace(program, *execId).first->second, *execId);
    ASSERT_EQ(programs_.try_emplace(*execId, program).first->second, program);
  }

  RandomKernel kernel_{GetParam()};
  ProcfsReader reader_{kernel_.roots(), [this](std::int32_t pid) { return kernel_.readClock(pid); }};
  SleepingProcessCache cache_{
      ProcfsReader(kernel_.roots(), [this](std::int32_t pid) { return kernel_.readClock(pid); })};
  unsigned sweep_ = 0;
  std::size_t previousCount_ = 0;
  std::size_t laggingFigures_ = 0;
  std::map<std::int32_t, unsigned> mayLag_;  // until this sweep
  std::map<std::uint64_t, std::uint64_t> execIds_;
  std::map<std::uint64_t, std::uint64_t> programs_;
};

TEST_P(RandomSweeps, CacheReturnsWhatThePlainReaderReturns) {
  constexpr unsigned sweeps = 700;
  while (sweep_ < sweeps) {
    SCOPED_TRACE("seed " + std::to_string(GetParam()) + ", sweep " + std::to_string(sweep_ + 1));
    ASSERT_NO_FATAL_FAILURE(compareSweep());
    kernel_.proceed();
  }
  EXPECT_GT(laggingFigures_, 0U) << "the cache must reuse entries of sleeping processes";
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSweeps, testing::Values(1U, 2U, 3U));

}  // namespace
}  // namespace tarn
