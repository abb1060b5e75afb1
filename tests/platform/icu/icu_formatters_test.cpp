// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/icu/icu_formatters.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

#include "format/formatting.hpp"

namespace tarn {
namespace {

constexpr std::int64_t kilobyte = 1024;
constexpr std::int64_t megabyte = 1024 * kilobyte;
constexpr std::int64_t gigabyte = 1024 * megabyte;

std::string bytes(std::uint64_t count, const char* locale = "en_US") {
  return ByteFormatting::string(count, IcuByteCountFormatter(icu::Locale(locale)));
}

std::string percent(double percentOfOneCore, const char* locale = "en_US") {
  return CPUFormatting::string(percentOfOneCore, IcuPercentFormatter(icu::Locale(locale)));
}

TEST(IcuByteCountFormatter, UsesTheLargestUnitOfWhichTheCountIsAtLeastOne) {
  EXPECT_EQ(bytes(512), "512 bytes");
  EXPECT_EQ(bytes(1023), "1,023 bytes");
  EXPECT_EQ(bytes(kilobyte), "1 KB");
  EXPECT_EQ(bytes(5'242'880), "5 MB");
  EXPECT_EQ(bytes(1'610'612'736), "1.5 GB");
  EXPECT_EQ(bytes(17'179'869'184), "16 GB");
}

TEST(IcuByteCountFormatter, WritesZeroAsDigitAndOneAsSingular) {
  EXPECT_EQ(bytes(0), "0 bytes");
  EXPECT_EQ(bytes(1), "1 byte");
  EXPECT_EQ(bytes(2), "2 bytes");
}

TEST(IcuByteCountFormatter, LimitsFractionDigitsByUnitAndDropsTrailingZeros) {
  EXPECT_EQ(bytes(1536), "2 KB");
  EXPECT_EQ(bytes(2560), "2 KB");
  EXPECT_EQ(bytes(megabyte + megabyte / 4), "1.2 MB");
  EXPECT_EQ(bytes(megabyte + megabyte / 2), "1.5 MB");
  EXPECT_EQ(bytes(gigabyte + gigabyte / 4), "1.25 GB");
  EXPECT_EQ(bytes(3 * gigabyte + gigabyte / 8), "3.12 GB");
}

TEST(IcuByteCountFormatter, UsesNoUnitAboveGigabytes) {
  EXPECT_EQ(bytes(2'199'023'255'552), "2,048 GB");
  EXPECT_EQ(bytes(std::numeric_limits<std::uint64_t>::max()), "8,589,934,592 GB");
}

TEST(IcuByteCountFormatter, UsesTheNextUnitInsteadOfRoundingTo1024) {
  EXPECT_EQ(bytes(megabyte - 1), "1 MB");
  EXPECT_EQ(bytes(megabyte - 513), "1,023 KB");
  EXPECT_EQ(bytes(gigabyte - 1), "1 GB");
  EXPECT_EQ(bytes(1023 * megabyte + 9 * megabyte / 10), "1,023.9 MB");
}

TEST(IcuByteCountFormatter, LocalizesDigitsGroupingAndDecimalMarkButNotUnitWords) {
  EXPECT_EQ(bytes(1'610'612'736, "de_DE"), "1,5 GB");
  EXPECT_EQ(bytes(2'199'023'255'552, "de_DE"), "2.048 GB");
  EXPECT_EQ(bytes(2'199'023'255'552, "fr_FR"), "2\u202f048 GB");
  EXPECT_EQ(bytes(1'610'612'736, "tr_TR"), "1,5 GB");
  EXPECT_EQ(bytes(2'199'023'255'552, "ar_EG"), "\u0662\u066c\u0660\u0664\u0668 GB");
  EXPECT_EQ(bytes(1'610'612'736, "ar_EG"), "\u0661\u066b\u0665 GB");
}

TEST(IcuPercentFormatter, IsAWholeNumber) {
  EXPECT_EQ(percent(12.3), "12%");
  EXPECT_EQ(percent(99.6), "100%");
  EXPECT_EQ(percent(0.6), "1%");
}

TEST(IcuPercentFormatter, ShowsValuesBelowHalfAPercentAndNaNAsZero) {
  EXPECT_EQ(percent(0.04), "0%");
  EXPECT_EQ(percent(0.49), "0%");
  EXPECT_EQ(percent(-1), "0%");
  EXPECT_EQ(percent(-3), "0%");
  EXPECT_EQ(percent(std::numeric_limits<double>::quiet_NaN()), "0%");
}

TEST(IcuPercentFormatter, RoundsHalvesToEven) {
  EXPECT_EQ(percent(0.5), "0%");
  EXPECT_EQ(percent(2.5), "2%");
  EXPECT_EQ(percent(3.5), "4%");
  EXPECT_EQ(percent(57.5), "58%");
}

TEST(IcuPercentFormatter, GroupsDigitsFromOneThousand) {
  EXPECT_EQ(percent(250.4), "250%");
  EXPECT_EQ(percent(1234), "1,234%");
}

TEST(IcuPercentFormatter, UsesThePercentPatternOfTheLocale) {
  EXPECT_EQ(percent(12, "de_DE"), "12\u00a0%");
  EXPECT_EQ(percent(1234, "fr_FR"), "1\u202f234\u00a0%");
  EXPECT_EQ(percent(12, "tr_TR"), "%12");
  EXPECT_EQ(percent(12, "ar_EG"), "\u0661\u0662\u066a\u061c");
}

/// Sets the three environment variables of numberLocale, and restores them in its destructor. Null unsets a
/// variable.
class LocaleEnvironment {
 public:
  LocaleEnvironment(const char* all, const char* numeric, const char* language) {
    set(0, all);
    set(1, numeric);
    set(2, language);
  }
  ~LocaleEnvironment() {
    for (std::size_t i = 0; i < names.size(); ++i) apply(names[i], previous_[i]);
  }
  LocaleEnvironment(const LocaleEnvironment&) = delete;
  LocaleEnvironment& operator=(const LocaleEnvironment&) = delete;

 private:
  static constexpr std::array<const char*, 3> names = {"LC_ALL", "LC_NUMERIC", "LANG"};

  void set(std::size_t index, const char* value) {
    if (const char* old = std::getenv(names[index])) previous_[index] = old;
    apply(names[index], value == nullptr ? std::nullopt : std::optional<std::string>(value));
  }
  static void apply(const char* name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name, value->c_str(), 1);
    } else {
      unsetenv(name);
    }
  }

  std::array<std::optional<std::string>, 3> previous_;
};

std::string localeFor(const char* all, const char* numeric, const char* language) {
  const LocaleEnvironment environment(all, numeric, language);
  return numberLocale().getName();
}

TEST(NumberLocale, UsesTheFirstVariableThatIsSet) {
  EXPECT_EQ(localeFor("fr_FR.UTF-8", "de_DE.UTF-8", "tr_TR.UTF-8"), "fr_FR");
  EXPECT_EQ(localeFor("", "de_DE.UTF-8", "tr_TR.UTF-8"), "de_DE");
  EXPECT_EQ(localeFor(nullptr, nullptr, "tr_TR.UTF-8"), "tr_TR");
}

TEST(NumberLocale, FallsBackToAmericanEnglish) {
  EXPECT_EQ(localeFor(nullptr, nullptr, nullptr), "en_US");
  EXPECT_EQ(localeFor("C.UTF-8", "de_DE.UTF-8", "de_DE.UTF-8"), "en_US");
  EXPECT_EQ(localeFor(nullptr, nullptr, "POSIX"), "en_US");
}

}  // namespace
}  // namespace tarn
