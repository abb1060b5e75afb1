// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "extras/thermal_state.hpp"

#include <gtest/gtest.h>

namespace tarn {
namespace {

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
