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
  // This number includes the start and end of the program.
  const int callsOfOneReading = countSystemCalls(1);
  const int additionalCalls = countSystemCalls(1 + readings) - callsOfOneReading;
  RecordProperty("system_calls_per_reading", additionalCalls / readings);
  std::printf("%d system calls in %d readings: %.1f each\n", additionalCalls, readings,
              double(additionalCalls) / readings);
  EXPECT_GT(additionalCalls, readings * 8) << "the sensors were not read";
  EXPECT_LE(additionalCalls, readings * 80);
}

}  // namespace
}  // namespace tarn
