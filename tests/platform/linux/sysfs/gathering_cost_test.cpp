// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Number of system calls of one reading of the extras, counted with strace.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

/// Number of system calls of the program gather_extras for `readings` readings. Calls that manage memory are
/// not counted because sanitizers make many of them.
int countSystemCalls(int readings) {
  const TemporaryTree tree;
  const std::string log = tree.at("calls").string();
  const std::string command = "ASAN_OPTIONS=detect_leaks=0 strace -f -qq -e 'trace=!%memory' -o '" + log +
                              "' '" TARN_GATHER_EXTRAS "' laptop-eight-sensors " + std::to_string(readings);
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
  EXPECT_EQ(std::system(command.c_str()), 0) << "is strace installed? " << command;
  std::ifstream lines(log);
  int count = 0;
  for (std::string line; std::getline(lines, line);) ++count;
  return count;
}

TEST(ExtrasReading, NeedsAtMost80SystemCallsOnALaptopWithEightSensors) {
  constexpr int readings = 20;
  const int first = countSystemCalls(1);
  const int more = countSystemCalls(1 + readings) - first;
  RecordProperty("system_calls_per_reading", more / readings);
  std::printf("%d system calls in %d readings: %.1f each\n", more, readings, double(more) / readings);
  EXPECT_GT(more, readings * 8) << "the sensors were not read";
  EXPECT_LE(more, readings * 80);
}

}  // namespace
}  // namespace tarn
