// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Costs of application identity: building the index, and reading a new process.

#include <benchmark/benchmark.h>

#include <fstream>
#include <string>

#include "platform/linux/app_identity/application_index.hpp"
#include "platform/linux/app_identity/linux_application_rules.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

constexpr int files = 500;
constexpr int languages = 60;

void writeApplications(const TemporaryTree& tree) {
  std::string translations;
  for (int language = 0; language < languages; ++language) {
    const std::string key = "[l" + std::to_string(language) + "]=";
    translations.append("Name").append(key).append("Application in some language\nComment");
    translations.append(key).append("What it does, in some words\n");
  }
  for (int i = 0; i < files; ++i) {
    const std::string program = "program" + std::to_string(i);
    std::string entry = "[Desktop Entry]\nType=Application\nExec=";
    entry.append(program).append(" %U\n").append(translations);
    tree.write("usr/bin/" + program, "");
    tree.write("usr/share/applications/org.example." + program + ".desktop", entry);
  }
}

/// Anonymous memory of this program, KB.
double anonymousKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == "RssAnon:" && status >> kilobytes) return kilobytes;
  }
  return 0;
}

void buildIndexOf500Files(benchmark::State& state) {
  const TemporaryTree tree;
  writeApplications(tree);
  static double growth = 0;  // KB, of the first iteration: the next ones reuse its freed memory
  while (state.KeepRunning()) {
    const double before = anonymousKilobytes();
    ApplicationIndex index(tree.roots(), {"/usr/share"}, {"/usr/bin"});
    benchmark::DoNotOptimize(index.refresh());
    if (growth == 0) growth = anonymousKilobytes() - before;
  }
  state.counters["KB"] = growth;
}
BENCHMARK(buildIndexOf500Files)
    ->Iterations(1)
    ->Repetitions(9)
    ->ReportAggregatesOnly()
    ->Unit(benchmark::kMillisecond);

void readNewProcess(benchmark::State& state) {
  const LinuxRoots roots;
  while (state.KeepRunning()) benchmark::DoNotOptimize(readProcessOrigin(roots, 1));
}
BENCHMARK(readNewProcess);

}  // namespace
}  // namespace tarn

BENCHMARK_MAIN();
