// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/snapshot.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace tarn {
namespace {

TEST(MemoryPressure, HasTheKernelsOwnNumbersAsRawValues) {
  EXPECT_EQ(static_cast<std::int32_t>(MemoryPressure::normal), 1);
  EXPECT_EQ(static_cast<std::int32_t>(MemoryPressure::warning), 2);
  EXPECT_EQ(static_cast<std::int32_t>(MemoryPressure::critical), 4);
}

TEST(MemoryPressure, ComesFromItsRawValue) {
  EXPECT_EQ(memoryPressureFromRawValue(1), MemoryPressure::normal);
  EXPECT_EQ(memoryPressureFromRawValue(2), MemoryPressure::warning);
  EXPECT_EQ(memoryPressureFromRawValue(4), MemoryPressure::critical);
}

TEST(MemoryPressure, ComesFromNoOtherNumber) {
  for (const std::int32_t number : {0, 3, 5, 6, 7, 8, -1, -4, std::numeric_limits<std::int32_t>::max(),
                                    std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(memoryPressureFromRawValue(number), std::nullopt) << number;
  }
}

TEST(MemoryPressureReading, IsTheLevelThatTheKernelNamed) {
  EXPECT_EQ(memoryPressureFromReading(1), MemoryPressure::normal);
  EXPECT_EQ(memoryPressureFromReading(2), MemoryPressure::warning);
  EXPECT_EQ(memoryPressureFromReading(4), MemoryPressure::critical);
}

TEST(MemoryPressureReading, IsNormalForUnknownNumbersAndFailedReadings) {
  for (const std::int32_t number : {0, 3, 5, 6, -2}) {
    EXPECT_EQ(memoryPressureFromReading(number), MemoryPressure::normal) << number;
  }
  EXPECT_EQ(memoryPressureFromReading(std::nullopt), MemoryPressure::normal);
}

}  // namespace
}  // namespace tarn
