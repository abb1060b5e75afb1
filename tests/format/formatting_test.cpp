// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "format/formatting.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace tarn {
namespace {

/// Returns the number without unit.
class PlainByteCountFormatter final : public ByteCountFormatter {
 public:
  std::string string(std::int64_t byteCount) const override { return std::to_string(byteCount); }
};

class FailingPercentFormatter final : public PercentFormatter {
 public:
  std::optional<std::string> string(double) const override { return std::nullopt; }
};

TEST(ByteFormatting, PassesCountsThatFitAnInt64) {
  EXPECT_EQ(ByteFormatting::string(0, PlainByteCountFormatter()), "0");
  EXPECT_EQ(ByteFormatting::string(9'223'372'036'854'775'806U, PlainByteCountFormatter()),
            "9223372036854775806");
}

TEST(ByteFormatting, ClampsLargerCountsToTheLargestInt64) {
  EXPECT_EQ(ByteFormatting::string(9'223'372'036'854'775'807U, PlainByteCountFormatter()),
            "9223372036854775807");
  EXPECT_EQ(ByteFormatting::string(std::numeric_limits<std::uint64_t>::max(), PlainByteCountFormatter()),
            "9223372036854775807");
}

TEST(CPUFormatting, WritesPlainDigitsWhenTheFormatterFails) {
  EXPECT_EQ(CPUFormatting::string(2.5, FailingPercentFormatter()), "3%");
  EXPECT_EQ(CPUFormatting::string(1234.4, FailingPercentFormatter()), "1234%");
  EXPECT_EQ(CPUFormatting::string(0.49, FailingPercentFormatter()), "0%");
  EXPECT_EQ(CPUFormatting::string(-7, FailingPercentFormatter()), "0%");
}

TEST(UptimeFormatting, ShowsOnlyMinutesBelowAnHour) {
  EXPECT_EQ(UptimeFormatting::string(59.9), "0 min");
  EXPECT_EQ(UptimeFormatting::string(60), "1 min");
  EXPECT_EQ(UptimeFormatting::string(119.99), "1 min");
  EXPECT_EQ(UptimeFormatting::string(3599), "59 min");
}

TEST(UptimeFormatting, ShowsHoursAndMinutesBelowADay) {
  EXPECT_EQ(UptimeFormatting::string(3600), "1 hour, 0 min");
  EXPECT_EQ(UptimeFormatting::string(3661), "1 hour, 1 min");
  EXPECT_EQ(UptimeFormatting::string(7260), "2 hours, 1 min");
  EXPECT_EQ(UptimeFormatting::string(86399), "23 hours, 59 min");
}

TEST(UptimeFormatting, ShowsDaysAndHoursFromOneDay) {
  EXPECT_EQ(UptimeFormatting::string(86400), "1 day, 0 hours");
  EXPECT_EQ(UptimeFormatting::string(90061), "1 day, 1 hour");
  EXPECT_EQ(UptimeFormatting::string(172800), "2 days, 0 hours");
  EXPECT_EQ(UptimeFormatting::string(1'000'000), "11 days, 13 hours");
}

TEST(UptimeFormatting, ShowsNegativeValuesAndNaNAsZero) {
  EXPECT_EQ(UptimeFormatting::string(0), "0 min");
  EXPECT_EQ(UptimeFormatting::string(-5), "0 min");
  EXPECT_EQ(UptimeFormatting::string(std::numeric_limits<double>::quiet_NaN()), "0 min");
}

TEST(UptimeFormattingDeathTest, AbortsOnValuesThatDoNotFitAnInt64) {
  EXPECT_DEATH(UptimeFormatting::string(std::numeric_limits<double>::infinity()), "");
  EXPECT_DEATH(UptimeFormatting::string(9.3e18), "");
}

}  // namespace
}  // namespace tarn
