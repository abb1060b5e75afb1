// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/display_text.hpp"

#include <gtest/gtest.h>

#include <string>

namespace tarn {
namespace {

std::string shown(const std::string& text) {
  return displayText(text).toStdString();
}

TEST(DisplayText, LeavesOrdinaryNamesAsTheyAre) {
  for (const std::string name :
       {"Firefox", "<b>Firefox & Co.</b>", "Ångström", "電卓", "حاسبة", "👩‍💻 Work", ""}) {
    EXPECT_EQ(shown(name), name);
  }
}

TEST(DisplayText, ReplacesWhatWouldBreakTheLine) {
  EXPECT_EQ(shown("a\nb\rc\td\x1b[31m\x7f"), "a\uFFFDb\uFFFDc\uFFFDd\uFFFD[31m\uFFFD");
  EXPECT_EQ(shown("a\u0085b\u2028c\u2029d"), "a\uFFFDb\uFFFDc\uFFFDd");
  EXPECT_EQ(shown(std::string("a\0b", 3)), "a\uFFFDb");
}

TEST(DisplayText, ReplacesWhatWouldReorderItsNeighbours) {
  for (const std::string mark : {"\u061C", "\u200E", "\u200F", "\u202A", "\u202B", "\u202C", "\u202D",
                                 "\u202E", "\u2066", "\u2067", "\u2068", "\u2069"}) {
    EXPECT_EQ(shown("a" + mark + "b"), "a\uFFFDb");
  }
}

TEST(DisplayText, ReplacesBytesThatAreNoText) {
  EXPECT_EQ(shown("a\xff\xfe"), "a\uFFFD\uFFFD");
  EXPECT_EQ(shown("\xc3"), "\uFFFD");
}

TEST(DisplayText, HasBoundedLength) {
  const QString text = displayText(std::string(std::size_t{128} * 1024, 'x'));
  EXPECT_GE(text.size(), 100);
  EXPECT_LE(text.size(), 1024);
}

}  // namespace
}  // namespace tarn
