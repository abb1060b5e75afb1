// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/file_reading.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <array>
#include <string>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

TEST(ReadFile, ReturnsAWholeFile) {
  const TemporaryTree tree;
  const std::string text(20'000, 'a');
  tree.write("file", text);
  EXPECT_EQ(readFile(tree.at("file")), text);
}

TEST(ReadFile, StopsAtItsLimit) {
  const TemporaryTree tree;
  tree.write("file", std::string(1 << 20, 'a'));
  EXPECT_EQ(readFile(tree.at("file")).size(), 65536U);
  EXPECT_EQ(readFile(tree.at("file"), 10).size(), 10U);
}

TEST(ReadFile, IsEmptyForOtherThanRegularFiles) {
  const TemporaryTree tree;
  tree.pipe("pipe");
  EXPECT_EQ(readFile(tree.at("pipe")), "");
  EXPECT_EQ(readFile(tree.at("proc")), "");
  EXPECT_EQ(readFile(tree.at("missing")), "");
  EXPECT_EQ(readFile("/dev/zero"), "");
}

TEST(ReadOnce, ReturnsWhatFitsIntoTheBuffer) {
  const TemporaryTree tree;
  tree.write("proc/file", "abcdef");
  const FileDescriptor directory(::open(tree.at("proc").c_str(), O_RDONLY | O_DIRECTORY));
  ASSERT_TRUE(directory.valid());
  std::array<char, 4> buffer{};
  EXPECT_EQ(readOnce(directory.number(), "file", buffer), "abcd");
  EXPECT_EQ(readOnce(directory.number(), "missing", buffer), "");
}

}  // namespace
}  // namespace tarn
