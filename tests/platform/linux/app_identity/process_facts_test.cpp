// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/process_facts.hpp"

#include <gmock/gmock.h>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

TEST(ControlGroup, IsTheUnifiedOneElseTheManagers) {
  EXPECT_EQ(parseControlGroup("0::/user.slice/a.scope\n"), "/user.slice/a.scope");
  EXPECT_EQ(parseControlGroup("12:cpu:/x\n1:name=systemd:/user.slice/b.scope\n0::/\n"),
            "/user.slice/b.scope");
  EXPECT_EQ(parseControlGroup("1:name=systemd:/b\n0::/c\n"), "/c");
  for (const auto* text : {"", "\n", "garbage", "0::/\n", "5:memory:/x\n"}) {
    EXPECT_EQ(parseControlGroup(text), "") << text;
  }
}

TEST(Arguments, AreTheFirstOnes) {
  EXPECT_THAT(parseArguments("python3\0/usr/bin/a\0\0x\0"s, true),
              ElementsAre("python3", "/usr/bin/a", "", "x"));
  EXPECT_THAT(parseArguments("a\0cut", true), ElementsAre("a"));
  EXPECT_THAT(parseArguments("a\0cut"s, true), ElementsAre("a", "cut"));
  EXPECT_THAT(parseArguments("a\0cut"s, false), ElementsAre("a"));
  EXPECT_THAT(parseArguments("", true), IsEmpty());
  EXPECT_EQ(parseArguments(std::string(100, '\0'), true).size(), 12U);
}

TEST(ProcessFacts, AreReadFromTheProcessTable) {
  const TemporaryTree tree;
  tree.link("proc/40/exe", "/usr/bin/python3.11 (deleted)");
  tree.write("proc/40/cmdline", "python3\0/usr/bin/app\0"s);
  tree.write("proc/40/cgroup", "0::/user.slice/app-x-1.scope\n");
  const ProcessFacts facts = readProcessFacts(tree.roots(), 40);
  EXPECT_EQ(facts.executable, "/usr/bin/python3.11");
  EXPECT_THAT(readArguments(tree.roots(), 40), ElementsAre("python3", "/usr/bin/app"));
  EXPECT_EQ(facts.controlGroup, "/user.slice/app-x-1.scope");
}

TEST(ProcessFacts, AreEmptyForAProcessThatIsGone) {
  const TemporaryTree tree;
  const ProcessFacts facts = readProcessFacts(tree.roots(), 40);
  EXPECT_EQ(facts.executable, "");
  EXPECT_THAT(readArguments(tree.roots(), 40), IsEmpty());
  EXPECT_EQ(facts.controlGroup, "");
}

}  // namespace
}  // namespace tarn
