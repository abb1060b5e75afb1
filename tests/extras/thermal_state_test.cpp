// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "extras/thermal.hpp"

namespace tarn {
namespace {

TEST(ThermalStateNumbers, AreThePlatforms) {
  EXPECT_EQ(thermalStateFromRawValue(0), ThermalState::nominal);
  EXPECT_EQ(thermalStateFromRawValue(1), ThermalState::fair);
  EXPECT_EQ(thermalStateFromRawValue(2), ThermalState::serious);
  EXPECT_EQ(thermalStateFromRawValue(3), ThermalState::critical);
  for (const std::int64_t other :
       {std::int64_t{-1}, std::int64_t{4}, std::int64_t{7}, std::int64_t{1} << 32}) {
    EXPECT_EQ(thermalStateFromRawValue(other), ThermalState::unknown) << other;
  }
}

TEST(ThermalPhrase, PutsEachStateInWords) {
  EXPECT_EQ(thermalPhrase(ThermalState::nominal), "Running cool");
  EXPECT_EQ(thermalPhrase(ThermalState::fair), "Warming up");
  EXPECT_EQ(thermalPhrase(ThermalState::serious), "Running hot");
  EXPECT_EQ(thermalPhrase(ThermalState::critical), "Overheating");
  EXPECT_EQ(thermalPhrase(ThermalState::unknown), "Temperature unknown");
}

TEST(ThermalPhrase, IsUnknownForAnyOtherValue) {
  for (const int value : {-2, 4, 5, 1000}) {
    EXPECT_EQ(thermalPhrase(static_cast<ThermalState>(value)), "Temperature unknown") << value;
  }
}

}  // namespace
}  // namespace tarn
