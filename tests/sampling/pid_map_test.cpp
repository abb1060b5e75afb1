// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/pid_map.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

namespace tarn {
namespace {

TEST(PidMap, FindsInsertedValues) {
  PidMap<std::string> map;
  EXPECT_EQ(map.find(7), nullptr);
  map[7] = "seven";
  ASSERT_NE(map.find(7), nullptr);
  EXPECT_EQ(*map.find(7), "seven");
  EXPECT_FALSE(map.tryEmplace(7).second);
  EXPECT_TRUE(map.tryEmplace(8).second);
  EXPECT_EQ(map.size(), 2U);
}

TEST(PidMap, ReturnsNullForInvalidOrUnknownPids) {
  PidMap<int> map;
  map[1] = 1;
  EXPECT_EQ(map.find(0), nullptr);
  EXPECT_EQ(map.find(-1), nullptr);
  EXPECT_EQ(map.find(2147483647), nullptr);
}

TEST(PidMap, KeepsItsMemoryWhenCleared) {
  PidMap<int> map;
  map.reserve(100);
  int* const first = map.tryEmplace(50).first;
  map.clear();
  EXPECT_EQ(map.size(), 0U);
  EXPECT_EQ(map.find(50), nullptr);
  EXPECT_EQ(map.tryEmplace(50).first, first);
  EXPECT_EQ(*first, 0) << "the value is new";
}

/// The parameter is the distance between two neighbouring pids.
class PidMapStress : public testing::TestWithParam<std::int32_t> {};

TEST_P(PidMapStress, AgreesWithStdMapOverRandomChanges) {
  const std::int32_t distance = GetParam();
  std::mt19937 random(1);
  PidMap<int> map;
  std::map<std::int32_t, int> expected;
  for (int step = 0; step < 20'000; ++step) {
    // Only 300 pids, so that runs of occupied slots form, grow and shrink.
    const auto pid = static_cast<std::int32_t>(1 + random() % 300) * distance;
    if (random() % 2 == 0) {
      map[pid] = step;
      expected[pid] = step;
    } else {
      map.erase(pid);
      expected.erase(pid);
    }
    ASSERT_EQ(map.size(), expected.size());
  }
  map.eraseIf([=](std::int32_t pid, int) { return pid / distance % 3 == 0; });
  std::erase_if(expected, [=](const auto& entry) { return entry.first / distance % 3 == 0; });
  EXPECT_EQ(map.size(), expected.size());
  for (std::int32_t pid = distance; pid <= 300 * distance; pid += distance) {
    const auto entry = expected.find(pid);
    ASSERT_EQ(map.contains(pid), entry != expected.end()) << pid;
    if (entry != expected.end()) {
      EXPECT_EQ(*map.find(pid), entry->second);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Pids, PidMapStress, testing::Values(1, 8, 4096, 7'000'001));

}  // namespace
}  // namespace tarn
