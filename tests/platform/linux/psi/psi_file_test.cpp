// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/psi/psi_file.hpp"

#include <gtest/gtest.h>

#include <string>

namespace tarn {
namespace {

TEST(PsiStats, ParsesBothLines) {
  const auto stats = parsePsiStats(
      "some avg10=12.34 avg60=5.00 avg300=1.00 total=123456789012\n"
      "full avg10=0.50 avg60=0.00 avg300=0.00 total=42\n");
  ASSERT_TRUE(stats);
  EXPECT_DOUBLE_EQ(stats->some.avg10, 12.34);
  EXPECT_EQ(stats->some.totalMicros, 123456789012U);
  EXPECT_DOUBLE_EQ(stats->full.avg10, 0.5);
  EXPECT_EQ(stats->full.totalMicros, 42U);
}

TEST(PsiStats, ReturnsNulloptForMalformedText) {
  const std::string some = "some avg10=0.00 avg60=0.00 avg300=0.00 total=0\n";
  for (const char* full :
       {"", "full", "full avg10=x avg60=0 avg300=0 total=0", "full avg10=nan avg60=0 avg300=0 total=0",
        "full avg10=-1 avg60=0 avg300=0 total=0", "full avg10=inf avg60=0 avg300=0 total=0",
        "full avg10=0 avg60=0 avg300=0 total=-1", "full avg10=0 avg60=0 avg300=0",
        "full avg10=0 avg60=0 avg300=0 total=18446744073709551616"}) {
    EXPECT_FALSE(parsePsiStats(some + full)) << full;
  }
  EXPECT_FALSE(parsePsiStats(""));
}

}  // namespace
}  // namespace tarn
