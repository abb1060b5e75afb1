// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/exec_line.hpp"

#include <gtest/gtest.h>

namespace tarn {
namespace {

using Arguments = std::vector<std::string>;

TEST(ExecLine, IsAProgramAndWhatItIsPassed) {
  EXPECT_EQ(parseExecLine("firefox"), (ExecLine{"firefox", {}}));
  EXPECT_EQ(parseExecLine("/usr/bin/vim -g %F"), (ExecLine{"/usr/bin/vim", {"-g"}}));
  EXPECT_EQ(parseExecLine("\"/opt/My App/run\" \"a b\" %u"), (ExecLine{"/opt/My App/run", {"a b"}}));
}

TEST(ExecLine, LooksThroughEnvironmentsAndShells) {
  EXPECT_EQ(parseExecLine("env GDK_BACKEND=x11 A= inkscape %F"), (ExecLine{"inkscape", {}}));
  EXPECT_EQ(parseExecLine("/usr/bin/env -i -u HOME LANG=C app"), (ExecLine{"app", {}}));
  EXPECT_EQ(parseExecLine("BAMF_DESKTOP_FILE_HINT=/x.desktop /snap/bin/app %U"),
            (ExecLine{"/snap/bin/app", {}}));
  EXPECT_EQ(parseExecLine("sh -c \"exec env A=1 app --flag\""), (ExecLine{"app", {"--flag"}}));
  EXPECT_EQ(parseExecLine("bash -c 'app %F'"), (ExecLine{"app", {}}));
}

TEST(ExecLine, IsNothingWithoutAProgram) {
  for (const auto* exec : {"", "   ", "%U", "env", "env A=1", "sh -c ''", "\"\"", "\"unclosed", "env -u"}) {
    EXPECT_EQ(parseExecLine(exec), std::nullopt) << exec;
  }
}

TEST(ExecLine, IsNothingThatIsTooLong) {
  std::string exec = "app";
  for (int word = 0; word < 10'000; ++word) exec += " word";
  EXPECT_EQ(parseExecLine(exec), std::nullopt);
}

TEST(RunsOthers, AreShellsInterpretersAndLaunchers) {
  for (const auto* name : {"sh", "bash", "python3", "python3.11", "perl", "node", "lua5.4", "gjs", "java",
                           "flatpak", "env", "pkexec", "wish8.6"}) {
    EXPECT_TRUE(runsOthers(name)) << name;
  }
  for (const auto* name : {"firefox", "pythonista", "javaws", "shotwell", "nodejs-editor", "", "perldoc"}) {
    EXPECT_FALSE(runsOthers(name)) << name;
  }
}

}  // namespace
}  // namespace tarn
