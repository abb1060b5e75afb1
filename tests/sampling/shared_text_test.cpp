// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/shared_text.hpp"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(SharedText, IsTheTextItWasMadeOf) {
  const SharedText text = "/usr/bin/editor";
  EXPECT_EQ(text, "/usr/bin/editor");
  EXPECT_EQ(text, SharedText(std::string("/usr/bin/editor")));
  EXPECT_FALSE(text == SharedText("/usr/bin/other"));
  EXPECT_EQ(std::string_view(text).size(), 15U);
}

TEST(SharedText, SharesOneCopy) {
  const SharedText text = "/usr/bin/editor";
  SharedText copy;
  copy = text;
  EXPECT_EQ(&copy.string(), &text.string());
}

TEST(SharedText, IsEmptyWithoutText) {
  EXPECT_TRUE(SharedText().empty());
  EXPECT_TRUE(SharedText("").empty());
  EXPECT_EQ(SharedText(), "");
  EXPECT_EQ(SharedText().string(), "");
}

}  // namespace
}  // namespace tarn
