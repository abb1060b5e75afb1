// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// sweep_against_floor PROCESSES ROUNDS: measures the CPU time of a sweep and of reading every process without
// parsing ("floor") on a machine with at least PROCESSES processes. The two run alternately; before each run
// the CPU caches are overwritten. Prints: number of processes, median of the sweeps and of the floors
// (microseconds), median of their ratio, and median of the ratio for a sweep in which every process has run
// since the last one.

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/kernel_clocks.hpp"
#include "platform/linux/procfs/linux_roots.hpp"
#include "sampling/memory_sampler.hpp"
#include "support/idle_processes.hpp"

namespace {

/// The lowest cost of a sweep that reads every process: for every process it opens, reads and closes `stat`
/// and `statm` and reads the CPU clock. It does not parse what it reads.
class FloorSweep {
 public:
  FloorSweep() : directory_(::opendir("/proc")) {
    if (!directory_) throw std::runtime_error("cannot open /proc");
  }

  /// Returns the number of processes that could be read.
  std::size_t run() {
    std::size_t count = 0;
    ::rewinddir(directory_.get());
    while (const dirent* const entry = ::readdir(directory_.get())) {
      const char* const name = static_cast<const char*>(entry->d_name);
      if (*name < '0' || *name > '9') continue;
      if (!read(name, "/stat") || !read(name, "/statm")) continue;
      int pid = 0;
      std::from_chars(name, name + std::strlen(name), pid);
      timespec time{};
      constexpr unsigned scheduledTime = 2;  // CPUCLOCK_SCHED of the kernel
      count += ::clock_gettime(static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3U) | scheduledTime),
                               &time) == 0;
    }
    return count;
  }

 private:
  bool read(const char* pid, const char* file) {
    std::array<char, 32> path{};  // at most 10 digits and 6 letters
    char* const end = std::copy(pid, pid + std::strlen(pid), path.data());
    *std::copy(file, file + std::strlen(file), end) = '\0';
    const int descriptor = ::openat(::dirfd(directory_.get()), path.data(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const ssize_t length = ::read(descriptor, buffer_.data(), buffer_.size());
    ::close(descriptor);
    return length > 0;
  }

  tarn::DirectoryStream directory_;
  std::array<char, 4096> buffer_{};
};

double cpuMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

/// Fills the CPU caches with other data, as other programs do in the seconds between two sweeps.
void overwriteCaches() {
  constexpr std::size_t largerThanCaches = std::size_t{64} << 20U;
  constexpr std::size_t cacheLine = 64;
  static std::vector<char> memory(largerThanCaches);
  for (std::size_t i = 0; i < memory.size(); i += cacheLine) ++memory[i];
}

template <typename Work>
double costOf(Work&& work) {
  overwriteCaches();
  const double begin = cpuMicroseconds();
  work();
  return cpuMicroseconds() - begin;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// A port of this machine whose process clocks advance between any two readings, so that no process counts as
/// idle.
tarn::SamplerPort makeBusyPort() {
  tarn::SamplerClocks clocks;
  clocks.processes = [read = tarn::processClockFor(tarn::LinuxRoots{}.proc),
                      advance = std::uint64_t{0}](std::int32_t pid) mutable {
    const auto time = read(pid);
    return time ? std::optional(*time + ++advance) : std::nullopt;
  };
  tarn::SamplerPort port =
      tarn::makeLinuxSamplerPort(tarn::LinuxRoots{}, tarn::environmentVariable, std::move(clocks));
  port.applicationRules = nullptr;
  return port;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) {
    std::fputs("usage: sweep_against_floor PROCESSES ROUNDS\n", stderr);
    return 2;
  }
  const std::size_t minimum = std::strtoul(arguments[1], nullptr, 10);
  const int rounds = std::atoi(arguments[2]);
  FloorSweep floor;
  const std::size_t present = floor.run();
  const tarn::IdleProcesses idle(minimum - std::min(minimum, present));
  tarn::MemorySampler sampler(tarn::makeLinuxSamplerPort(tarn::LinuxRoots{}));
  tarn::MemorySampler busySampler(makeBusyPort());
  // The first two sweeps read more of each process.
  for (int warmUp = 0; warmUp < 2; ++warmUp) {
    sampler.sample();
    busySampler.sample();
  }

  std::vector<double> sweeps;
  std::vector<double> floors;
  std::vector<double> ratios;
  std::vector<double> busyRatios;
  for (int round = 0; round < rounds; ++round) {
    sweeps.push_back(costOf([&] { sampler.sample(); }));
    floors.push_back(costOf([&] { floor.run(); }));
    ratios.push_back(sweeps.back() / floors.back());
    busyRatios.push_back(costOf([&] { busySampler.sample(); }) / floors.back());
  }
  std::printf("%zu %.1f %.1f %.4f %.4f\n", floor.run(), median(sweeps), median(floors), median(ratios),
              median(busyRatios));
  return 0;
}
