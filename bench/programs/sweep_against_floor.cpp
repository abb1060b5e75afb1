// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// sweep_against_floor PROCESSES ROUNDS: starts processes until there are so many, then lets a sweep and the
// floor take turns, each after others have used the processor's caches. Prints the medians of what each round
// costs in processor time, in microseconds.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <optional>
#include <vector>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "platform/linux/procfs/sleeping_process_cache.hpp"
#include "programs/floor_sweep.hpp"
#include "sampling/memory_sampler.hpp"
#include "support/idle_processes.hpp"

namespace {

double processorMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

/// Between two sweeps lie seconds in which others have the processor: fills its caches with something else.
void letOthersUseTheCaches() {
  constexpr std::size_t largerThanCaches = std::size_t{64} << 20U;
  constexpr std::size_t cacheLine = 64;
  static std::vector<char> others(largerThanCaches);
  for (std::size_t i = 0; i < others.size(); i += cacheLine) ++others[i];
}

template <typename Work>
double costOf(Work&& work) {
  letOthersUseTheCaches();
  const double begin = processorMicroseconds();
  work();
  return processorMicroseconds() - begin;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// This machine, with clocks by which no process ever sleeps.
tarn::SamplerPort busyMachine() {
  const tarn::LinuxRoots roots;
  tarn::SamplerPort port = tarn::makeLinuxSamplerPort(tarn::LinuxRoots{});
  port.applicationRules = nullptr;  // they ask the process table that is replaced
  auto clock = [read = tarn::processClockFor(roots.proc),
                moved = std::uint64_t{0}](std::int32_t pid) mutable {
    const auto time = read(pid);
    return time ? std::optional(*time + ++moved) : std::nullopt;
  };
  port.processes = std::make_unique<tarn::SleepingProcessCache>(tarn::ProcfsReader(roots, std::move(clock)));
  return port;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) {
    std::fputs("usage: sweep_against_floor PROCESSES ROUNDS\n", stderr);
    return 2;
  }
  const std::size_t wanted = std::strtoul(arguments[1], nullptr, 10);
  const int rounds = std::atoi(arguments[2]);
  tarn::FloorSweep floor;
  const std::size_t present = floor.run();
  const tarn::IdleProcesses idle(wanted - std::min(wanted, present));
  tarn::MemorySampler sampler(tarn::makeLinuxSamplerPort(tarn::LinuxRoots{}));
  tarn::MemorySampler busySampler(busyMachine());
  // The first two sweeps look at each process more closely.
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
