// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Real processes that start and end all the time, and pids that pass from one to the next. Wants a pid name
// space of its own, where it may choose pids. TARN_STORM_SWEEPS tells for how many sweeps the storm lasts.

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
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

/// A child that does `work` and is ended with the test.
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

[[noreturn]] void burn() {
  while (true) std::atomic_signal_fence(std::memory_order_seq_cst);
}

/// Starts processes at an even pace, each of which starts another one and ends at once.
[[noreturn]] void raiseStorm() {
  // Nobody waits for what the storm leaves behind: without this it would fill the process table.
  ::prctl(PR_SET_CHILD_SUBREAPER, 1);
  ::signal(SIGCHLD, SIG_IGN);
  constexpr auto pace = std::chrono::microseconds(1'000'000 / 300);
  for (auto next = std::chrono::steady_clock::now();; next += pace) {
    if (::fork() == 0) {
      if (::fork() == 0) ::usleep(2'000);
      ::_exit(0);
    }
    std::this_thread::sleep_until(next);
  }
}

int stormSweeps() {
  const char* const told = std::getenv("TARN_STORM_SWEEPS");
  return told == nullptr ? 40 : std::atoi(told);
}

std::ptrdiff_t openFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

const ProcessSample* sampleOf(const MemorySnapshot& snapshot, pid_t pid) {
  for (const AppGroup& group : snapshot.groups) {
    for (const ProcessSample& sample : group.processes) {
      if (sample.pid == pid) return &sample;
    }
  }
  return nullptr;
}

/// Has the next process that starts in this name space bear a pid.
bool choosePid(pid_t pid) {
  std::ofstream last("/proc/sys/kernel/ns_last_pid");
  last << pid - 1 << std::flush;
  return last.good();
}

/// A child of that pid; null where none can be had. Another process of the name space may be quicker now and
/// then.
std::unique_ptr<Child> childOfPid(pid_t pid, const std::function<void()>& work) {
  for (int attempt = 0; attempt < 100 && choosePid(pid); ++attempt) {
    auto child = std::make_unique<Child>(work);
    if (child->pid() == pid) return child;
  }
  return nullptr;
}

TEST(ProcessStorm, NeverTellsMoreThanTheLoadCanBeNorKeepsFilesOpen) {
  const Child storm(raiseStorm);
  const Child burner(burn);
  MemorySampler sampler(makeLinuxSamplerPort(LinuxRoots{}));
  sampler.sample();
  std::this_thread::sleep_for(50ms);
  sampler.sample();
  const std::ptrdiff_t before = openFiles();
  double most = 0;
  int seen = 0;
  for (int sweep = 0; sweep < stormSweeps(); ++sweep) {
    std::this_thread::sleep_for(50ms);
    const MemorySnapshot snapshot = sampler.sample();
    const ProcessSample* const sample = sampleOf(snapshot, burner.pid());
    ASSERT_NE(sample, nullptr);
    most = std::max(most, sample->cpuPercent);
    seen += sample->cpuPercent > 5 ? 1 : 0;
    for (const AppGroup& group : snapshot.groups) {
      ASSERT_GE(group.cpuPercent, 0);
      ASSERT_LE(group.cpuPercent, 100.0 * std::thread::hardware_concurrency() + 10) << group.name;
    }
  }
  EXPECT_LE(most, 110) << "one thread";
  EXPECT_GT(seen, stormSweeps() / 2) << "the load is a load";
  EXPECT_EQ(openFiles(), before);
}

/// Has a pid pass from a process that burned for some time, and was seen then, to another one that does
/// `work`, and gives what is told of that: its share, or nothing where it is not told of.
std::optional<double> shareOfHeir(pid_t pid, std::chrono::milliseconds burned,
                                  std::chrono::milliseconds between, const std::function<void()>& work,
                                  std::chrono::milliseconds worked) {
  MemorySampler sampler(makeLinuxSamplerPort(LinuxRoots{}));
  {
    const auto before = childOfPid(pid, burn);
    if (!before) return std::nullopt;
    std::this_thread::sleep_for(burned);
    sampler.sample();
  }
  std::this_thread::sleep_for(between);
  const auto after = childOfPid(pid, work);
  if (!after) return std::nullopt;
  std::this_thread::sleep_for(worked);
  const MemorySnapshot snapshot = sampler.sample();
  const ProcessSample* const sample = sampleOf(snapshot, pid);
  return sample == nullptr ? std::nullopt : std::optional(sample->cpuPercent);
}

TEST(ProcessStorm, TellsNothingOfAProcessThatTookAPidInAnotherSecond) {
  for (int times = 0; times < 3; ++times) {
    EXPECT_EQ(shareOfHeir(20'000, 30ms, 1'100ms, burn, 200ms), 0) << "though it did more";
  }
}

TEST(ProcessStorm, TellsNothingOfAProcessThatTookAPidInTheSameSecondAndDidLess) {
  for (int times = 0; times < 5; ++times) {
    EXPECT_EQ(shareOfHeir(
                  21'000, 200ms, 0ms, [] { ::pause(); }, 10ms),
              0);
  }
}

}  // namespace
}  // namespace tarn
