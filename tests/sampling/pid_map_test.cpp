// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/pid_map.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

namespace tarn {
namespace {

TEST(PidMap, HasWhatWasPutIn) {
  PidMap<std::string> map;
  EXPECT_EQ(map.find(7), nullptr);
  map[7] = "seven";
  ASSERT_NE(map.find(7), nullptr);
  EXPECT_EQ(*map.find(7), "seven");
  EXPECT_FALSE(map.tryEmplace(7).second);
  EXPECT_TRUE(map.tryEmplace(8).second);
  EXPECT_EQ(map.size(), 2U);
}

TEST(PidMap, HasNoneOfPidsThatCannotBe) {
  PidMap<int> map;
  map[1] = 1;
  EXPECT_EQ(map.find(0), nullptr);
  EXPECT_EQ(map.find(-1), nullptr);
  EXPECT_EQ(map.find(2147483647), nullptr);
}

TEST(PidMap, KeepsItsRoomWhenCleared) {
  PidMap<int> map;
  map.reserve(100);
  int* const first = map.tryEmplace(50).first;
  map.clear();
  EXPECT_EQ(map.size(), 0U);
  EXPECT_EQ(map.find(50), nullptr);
  EXPECT_EQ(map.tryEmplace(50).first, first);
  EXPECT_EQ(*first, 0) << "as new";
}

/// Pids that the map is tried with: neighbours, and such as lie far apart.
class PidMapOverTime : public testing::TestWithParam<std::int32_t> {};

TEST_P(PidMapOverTime, AgreesWithAMapOverRandomChanges) {
  const std::int32_t apart = GetParam();
  std::mt19937 random(1);
  PidMap<int> map;
  std::map<std::int32_t, int> expected;
  for (int step = 0; step < 20'000; ++step) {
    // Few pids, so that runs of neighbours form, grow and break.
    const auto pid = static_cast<std::int32_t>(1 + random() % 300) * apart;
    if (random() % 2 == 0) {
      map[pid] = step;
      expected[pid] = step;
    } else {
      map.erase(pid);
      expected.erase(pid);
    }
    ASSERT_EQ(map.size(), expected.size());
  }
  map.eraseIf([=](std::int32_t pid, int) { return pid / apart % 3 == 0; });
  std::erase_if(expected, [=](const auto& entry) { return entry.first / apart % 3 == 0; });
  EXPECT_EQ(map.size(), expected.size());
  for (std::int32_t pid = apart; pid <= 300 * apart; pid += apart) {
    const auto entry = expected.find(pid);
    ASSERT_EQ(map.contains(pid), entry != expected.end()) << pid;
    if (entry != expected.end()) {
      EXPECT_EQ(*map.find(pid), entry->second);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Pids, PidMapOverTime, testing::Values(1, 8, 4096, 7'000'001));

}  // namespace
}  // namespace tarn
