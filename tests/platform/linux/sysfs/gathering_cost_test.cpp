// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What one gathering costs, as strace sees it.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

/// How many system calls a program makes that gathers so many times, those for memory aside: of them a
/// sanitizer makes many.
int callsOf(int gatherings) {
  const TemporaryTree tree;
  const std::string log = tree.at("calls").string();
  const std::string command = "ASAN_OPTIONS=detect_leaks=0 strace -f -qq -e 'trace=!%memory' -o '" + log +
                              "' '" TARN_GATHER_EXTRAS "' laptop-eight-sensors " + std::to_string(gatherings);
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
  EXPECT_EQ(std::system(command.c_str()), 0) << "is strace installed? " << command;
  std::ifstream lines(log);
  int count = 0;
  for (std::string line; std::getline(lines, line);) ++count;
  return count;
}

TEST(OneGathering, TakesAtMost80SystemCallsOnALaptopWithEightSensors) {
  constexpr int rounds = 20;
  const int first = callsOf(1);
  const int more = callsOf(1 + rounds) - first;
  RecordProperty("system_calls_per_gathering", more / rounds);
  std::printf("%d system calls in %d gatherings: %.1f each\n", more, rounds, double(more) / rounds);
  EXPECT_GT(more, rounds * 8) << "the sensors were not read";
  EXPECT_LE(more, rounds * 80);
}

}  // namespace
}  // namespace tarn
