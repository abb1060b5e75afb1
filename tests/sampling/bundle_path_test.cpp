// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/bundle_path.hpp"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(OutermostBundle, ReturnsTheAppDirectoryAboveTheExecutable) {
  EXPECT_EQ(outermostBundle("/Applications/Editor.app/Contents/MacOS/Editor"), "/Applications/Editor.app");
}

TEST(OutermostBundle, ReturnsTheOuterOfTwoNestedBundles) {
  EXPECT_EQ(outermostBundle("/Applications/A.app/Contents/Library/B.app/Contents/MacOS/B"),
            "/Applications/A.app");
}

TEST(OutermostBundle, AcceptsTheBundleAsLastComponent) {
  EXPECT_EQ(outermostBundle("/opt/Clock.app"), "/opt/Clock.app");
  EXPECT_EQ(outermostBundle("/opt/Clock.app/"), "/opt/Clock.app");
  EXPECT_EQ(outermostBundle("/opt/.app/x"), "/opt/.app");
}

TEST(OutermostBundle, ReturnsNulloptWhenNoComponentEndsWithApp) {
  EXPECT_EQ(outermostBundle(""), std::nullopt);
  EXPECT_EQ(outermostBundle("/"), std::nullopt);
  EXPECT_EQ(outermostBundle("/usr/bin/app"), std::nullopt);
  EXPECT_EQ(outermostBundle("/Users/x/Old.app.backup/bin"), std::nullopt);
}

TEST(OutermostBundle, IsCaseSensitive) {
  EXPECT_EQ(outermostBundle("/opt/Clock.App/Clock"), std::nullopt);
  EXPECT_EQ(outermostBundle("/opt/Clock.APP/Old.app/Clock"), "/opt/Clock.APP/Old.app");
}

TEST(OutermostBundle, DropsEmptyComponents) {
  EXPECT_EQ(outermostBundle("//opt///Clock.app//Clock"), "/opt/Clock.app");
}

TEST(OutermostBundle, ReadsARelativePathAsAbsolute) {
  EXPECT_EQ(outermostBundle("opt/Clock.app/Clock"), "/opt/Clock.app");
  EXPECT_EQ(outermostBundle("Clock.app"), "/Clock.app");
}

TEST(LastPathComponent, ReturnsTextAfterTheLastSlash) {
  EXPECT_EQ(lastPathComponent("/usr/bin/python3"), "python3");
  EXPECT_EQ(lastPathComponent("python3"), "python3");
  EXPECT_EQ(lastPathComponent("/init"), "init");
}

TEST(LastPathComponent, IgnoresTrailingSlashes) {
  EXPECT_EQ(lastPathComponent("/opt/Clock.app//"), "Clock.app");
  EXPECT_EQ(lastPathComponent("opt/"), "opt");
}

TEST(LastPathComponent, ReturnsRootAndEmptyPathUnchanged) {
  EXPECT_EQ(lastPathComponent("/"), "/");
  EXPECT_EQ(lastPathComponent("//"), "/");
  EXPECT_EQ(lastPathComponent(""), "");
}

TEST(DeletingPathExtension, RemovesOnlyTheLastExtension) {
  EXPECT_EQ(deletingPathExtension("Editor.app"), "Editor");
  EXPECT_EQ(deletingPathExtension("org.example.Editor.desktop"), "org.example.Editor");
}

TEST(DeletingPathExtension, ReturnsNameUnchangedWhenNothingWouldRemain) {
  EXPECT_EQ(deletingPathExtension(".app"), ".app");
  EXPECT_EQ(deletingPathExtension("Editor"), "Editor");
  EXPECT_EQ(deletingPathExtension(""), "");
}

}  // namespace
}  // namespace tarn
