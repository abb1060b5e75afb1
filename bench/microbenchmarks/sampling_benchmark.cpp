// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The parts of a sweep without system calls: parsing, grouping and smoothing, ranking.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/procfs/proc_pid_files.hpp"
#include "sampling/memory_sampler.hpp"
#include "sampling/pid_map.hpp"

namespace tarn {
namespace {

void parseStat(benchmark::State& state) {
  constexpr std::string_view text =
      "28197 (gnome-terminal-) S 2210 28197 28197 0 -1 4194304 41385 1203 12 3 1830 411 7 8 20 0 5 0 5817702 "
      "564695040 13291 18446744073709551615 1 1 0 0 0 0 0 4096 65536 0 0 0 17 3 0 0 0 0 0 0 0 0 0 0 0 0 0\n";
  while (state.KeepRunning()) benchmark::DoNotOptimize(parseProcessStat(text));
}
BENCHMARK(parseStat);

void parsePages(benchmark::State& state) {
  while (state.KeepRunning()) benchmark::DoNotOptimize(parseProcessPages("137865 13291 9187 80 0 14210 0\n"));
}
BENCHMARK(parsePages);

void findInPidMap(benchmark::State& state) {
  const auto count = static_cast<std::int32_t>(state.range(0));
  PidMap<std::uint64_t> map;
  for (std::int32_t pid = 1; pid <= count; ++pid) map[pid * 7] = 1;
  std::int32_t pid = 0;
  while (state.KeepRunning()) {
    pid = pid % count + 1;
    benchmark::DoNotOptimize(map.find(pid * 7));
  }
}
BENCHMARK(findInPidMap)->Arg(300)->Arg(10'000);

/// A process source that costs almost nothing. Every tenth process is an application and the parent of the
/// next nine.
class FakeProcesses final : public ProcScan {
 public:
  explicit FakeProcesses(std::int32_t count) : count_(count) {}
  std::vector<std::int32_t> allPIDs() override {
    std::vector<std::int32_t> pids;
    for (std::int32_t pid = 10; pid < 10 + count_; ++pid) pids.push_back(pid);
    return pids;
  }
  std::optional<BsdInfo> bsdInfo(std::int32_t pid) override {
    return BsdInfo{pid % 10 == 0 ? 1 : pid - pid % 10, 1000, 1'700'000'000};
  }
  std::string path(std::int32_t pid) override {
    if (pid % 10 != 0) return "/usr/libexec/some-helper-of-an-application";
    return "/opt/Application" + std::to_string(pid) + ".app/program";
  }
  std::optional<ProcessUsage> usage(std::int32_t pid) override {
    time_ += 1000;
    return ProcessUsage{static_cast<std::uint64_t>(pid) * 7919 % 1'000'000, time_};
  }
  SharedText processName(std::int32_t /*pid*/) override { return {}; }

 private:
  std::int32_t count_;
  std::uint64_t time_ = 0;
};

class NoMemory final : public SystemMemoryReader {
 public:
  std::uint64_t totalRAM() override { return 0; }
  std::uint64_t swapUsed() override { return 0; }
  SystemMemory read() override { return {}; }
};

SamplerPort makeFakePort(std::int64_t processes) {
  SamplerPort port;
  port.processes = std::make_unique<FakeProcesses>(static_cast<std::int32_t>(processes));
  port.memory = std::make_unique<NoMemory>();
  port.uptime = [time = 0.0]() mutable { return time += 0.1; };
  return port;
}

void groupAndSmooth(benchmark::State& state) {
  MemorySampler sampler(makeFakePort(state.range(0)));
  sampler.sample();
  while (state.KeepRunning()) benchmark::DoNotOptimize(sampler.sample());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(groupAndSmooth)->Arg(300)->Arg(10'000)->Unit(benchmark::kMicrosecond);

void rankTopGroups(benchmark::State& state) {
  const MemorySnapshot snapshot = MemorySampler(makeFakePort(state.range(0))).sample();
  while (state.KeepRunning()) benchmark::DoNotOptimize(snapshot.topGroups(SortMetric::cpu, 8));
}
BENCHMARK(rankTopGroups)->Arg(300)->Arg(10'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tarn

BENCHMARK_MAIN();
