// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Stress test: sweeps while real processes start and exit, and while pids are reused. It needs a separate pid
// namespace, where it can choose pids. TARN_STRESS_SWEEPS sets the number of sweeps (default: 40).
//
// The tests sleep: they measure CPU time that processes use in real time, and the kernel gives start times in
// real time, too.

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "sampling/memory_sampler.hpp"

namespace tarn {
namespace {

using namespace std::chrono_literals;

/// A child process that runs `work`. The destructor kills it.
class Child {
 public:
  explicit Child(const std::function<void()>& work) : pid_(::fork()) {
    if (pid_ != 0) return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    work();
    ::_exit(0);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }

  pid_t pid() const { return pid_; }

 private:
  pid_t pid_;
};

[[noreturn]] void useCpu() {
  while (true) std::atomic_signal_fence(std::memory_order_seq_cst);
}

/// Starts 300 processes a second. Each exits immediately after it has started another process, which exits
/// after 2 ms.
[[noreturn]] void startManyProcesses() {
  // The grandchildren are reparented to this process, and SIG_IGN removes them without a wait: otherwise
  // zombies would fill the process table.
  ::prctl(PR_SET_CHILD_SUBREAPER, 1);
  ::signal(SIGCHLD, SIG_IGN);
  constexpr auto interval = std::chrono::microseconds(1'000'000 / 300);
  for (auto next = std::chrono::steady_clock::now();; next += interval) {
    if (::fork() == 0) {
      if (::fork() == 0) ::usleep(2'000);
      ::_exit(0);
    }
    std::this_thread::sleep_until(next);
  }
}

int sweepCount() {
  const char* const count = std::getenv("TARN_STRESS_SWEEPS");
  return count == nullptr ? 40 : std::atoi(count);
}

std::ptrdiff_t openFileCount() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

const ProcessSample* findSample(const MemorySnapshot& snapshot, pid_t pid) {
  for (const AppGroup& group : snapshot.groups) {
    for (const ProcessSample& sample : group.processes) {
      if (sample.pid == pid) return &sample;
    }
  }
  return nullptr;
}

/// Makes the kernel give `pid` to the next process of this pid namespace (pid_namespaces(7)).
bool chooseNextPid(pid_t pid) {
  std::ofstream last("/proc/sys/kernel/ns_last_pid");
  last << pid - 1 << std::flush;
  return last.good();
}

/// Starts a child with this pid; null on failure. Makes several attempts, because another process of the
/// namespace may get the pid.
std::unique_ptr<Child> startChildWithPid(pid_t pid, const std::function<void()>& work) {
  for (int attempt = 0; attempt < 100 && chooseNextPid(pid); ++attempt) {
    auto child = std::make_unique<Child>(work);
    if (child->pid() == pid) return child;
  }
  return nullptr;
}

TEST(SweepStress, CpuShareStaysInItsRangeAndNoFileStaysOpen) {
  const Child processStarter(startManyProcesses);
  const Child load(useCpu);
  MemorySampler sampler(makeLinuxSamplerPort(LinuxRoots{}));
  sampler.sample();
  std::this_thread::sleep_for(50ms);
  sampler.sample();
  const std::ptrdiff_t openFilesBefore = openFileCount();
  double maxPercent = 0;
  int sweepsWithLoad = 0;
  for (int sweep = 0; sweep < sweepCount(); ++sweep) {
    std::this_thread::sleep_for(50ms);
    const MemorySnapshot snapshot = sampler.sample();
    const ProcessSample* const sample = findSample(snapshot, load.pid());
    ASSERT_NE(sample, nullptr);
    maxPercent = std::max(maxPercent, sample->cpuPercent);
    sweepsWithLoad += sample->cpuPercent > 5 ? 1 : 0;
    for (const AppGroup& group : snapshot.groups) {
      ASSERT_GE(group.cpuPercent, 0);
      ASSERT_LE(group.cpuPercent, 100.0 * std::thread::hardware_concurrency() + 10) << group.name;
    }
  }
  EXPECT_LE(maxPercent, 110) << "the load process has one thread";
  EXPECT_GT(sweepsWithLoad, sweepCount() / 2) << "most sweeps must report the load";
  EXPECT_EQ(openFileCount(), openFilesBefore);
}

/// Durations of the phases of `cpuShareAfterPidReuse`.
struct PidReuse {
  std::chrono::milliseconds firstProcessRuns;
  std::chrono::milliseconds pause;
  std::chrono::milliseconds secondProcessRuns;
};

/// A process uses CPU time, is sampled and exits; another process gets its pid and runs `work`. Returns the
/// CPU share that is sampled for the second process, or nullopt if it is not in the snapshot.
std::optional<double> cpuShareAfterPidReuse(pid_t pid, const PidReuse& durations,
                                            const std::function<void()>& work) {
  MemorySampler sampler(makeLinuxSamplerPort(LinuxRoots{}));
  {
    const auto first = startChildWithPid(pid, useCpu);
    if (!first) return std::nullopt;
    std::this_thread::sleep_for(durations.firstProcessRuns);
    sampler.sample();
  }
  std::this_thread::sleep_for(durations.pause);
  const auto second = startChildWithPid(pid, work);
  if (!second) return std::nullopt;
  std::this_thread::sleep_for(durations.secondProcessRuns);
  const MemorySnapshot snapshot = sampler.sample();
  const ProcessSample* const sample = findSample(snapshot, pid);
  return sample == nullptr ? std::nullopt : std::optional(sample->cpuPercent);
}

TEST(SweepStress, CpuShareIsZeroIfThePidIsReusedInAnotherSecond) {
  for (int times = 0; times < 3; ++times) {
    EXPECT_EQ(cpuShareAfterPidReuse(20'000, {30ms, 1'100ms, 200ms}, useCpu), 0)
        << "the second process used more CPU time than the first";
  }
}

TEST(SweepStress, CpuShareIsZeroIfThePidIsReusedInTheSameSecondByAnIdleProcess) {
  for (int times = 0; times < 5; ++times) {
    EXPECT_EQ(cpuShareAfterPidReuse(21'000, {200ms, 0ms, 10ms}, [] { ::pause(); }), 0);
  }
}

}  // namespace
}  // namespace tarn
