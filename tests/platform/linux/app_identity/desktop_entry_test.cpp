// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/desktop_entry.hpp"

#include <gtest/gtest.h>

#include "platform/linux/app_identity/application_information.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using namespace std::string_literals;

class DesktopEntryTest : public ::testing::Test {
 protected:
  std::optional<DesktopEntry> read(const std::string& text) {
    tree_.write("a.desktop", text);
    return read();
  }
  std::optional<DesktopEntry> read() const { return readDesktopEntry(tree_.at("a.desktop").string()); }

  TemporaryTree tree_;
};

TEST_F(DesktopEntryTest, ReadsTheKeysThatIdentifyProcesses) {
  EXPECT_EQ(read("[Desktop Entry]\nType=Application\nName=Editor\nExec=editor --new %U\n"),
            (DesktopEntry{.exec = "editor --new %U"}));
  EXPECT_EQ(read("# a comment\n\n[Desktop Entry]\nType=Application\nExec=a\nNoDisplay=true\nTerminal=true\n"
                 "[Desktop Action new]\nExec=b\n"),
            (DesktopEntry{.exec = "a", .isListed = false, .runsInTerminal = true}));
}

TEST_F(DesktopEntryTest, IsNulloptForOtherTypesHiddenEntriesAndInvalidFiles) {
  EXPECT_EQ(read("[Desktop Entry]\nType=Link\nExec=a\n"), std::nullopt);
  EXPECT_EQ(read("[Desktop Entry]\nExec=a\n"), std::nullopt);
  EXPECT_EQ(read("[Desktop Entry]\nType=Application\nHidden=true\nExec=a\n"), std::nullopt);
  EXPECT_EQ(read("garbage"), std::nullopt);
  EXPECT_EQ(read(""), std::nullopt);
  EXPECT_EQ(readDesktopEntry("/nowhere"), std::nullopt);
}

TEST_F(DesktopEntryTest, IsNulloptForSpecialFilesAndLargeFiles) {
  const std::string entry = "[Desktop Entry]\nType=Application\nExec=a\n";
  EXPECT_TRUE(read(entry + std::string(200'000, '#')));
  EXPECT_EQ(read(entry + std::string(50 << 20, '#')), std::nullopt);
  tree_.pipe("a.desktop");
  EXPECT_EQ(read(), std::nullopt);
  tree_.link("a.desktop", "a.desktop");
  EXPECT_EQ(read(), std::nullopt) << "a link to itself";
  tree_.link("a.desktop", "/dev/zero");
  EXPECT_EQ(read(), std::nullopt);
}

TEST_F(DesktopEntryTest, AcceptsInvalidUtf8AndRejectsZeroBytes) {
  EXPECT_EQ(read("[Desktop Entry]\nType=Application\nExec=a\0b\n"s), std::nullopt);
  read("[Desktop Entry]\nType=Application\nExec=\xff\xfe\nName=\xff\n");
  readDesktopAppearance(tree_.at("a.desktop").string());
}

TEST_F(DesktopEntryTest, AppearanceHasNameAndIcon) {
  tree_.write("usr/share/applications/a.desktop",
              "[Desktop Entry]\nType=Application\nName=Files\nName[xx]=Nope\nIcon=folder\nExec=a\n");
  const std::string path = "/usr/share/applications/a.desktop";
  const auto appearance = readDesktopAppearance(tree_.at("usr/share/applications/a.desktop").string());
  ASSERT_TRUE(appearance);
  EXPECT_EQ(appearance->name, "Files");
  EXPECT_EQ(appearance->icon, "folder");
  EXPECT_EQ(applicationInformation(tree_.roots(), path),
            (InformationDictionary{{"CFBundleDisplayName", "Files"}}));
  EXPECT_EQ(applicationInformation(tree_.roots(), "/usr/share/applications/gone.desktop"),
            InformationDictionary{});
  EXPECT_EQ(applicationInformation(tree_.roots(), "/opt/A.app"), InformationDictionary{});
}

TEST(ExecKey, IsAProgramAndItsArguments) {
  EXPECT_EQ(parseExecKey("firefox"), (ExecCommand{"firefox", {}}));
  EXPECT_EQ(parseExecKey("/usr/bin/vim -g %F"), (ExecCommand{"/usr/bin/vim", {"-g"}}));
  EXPECT_EQ(parseExecKey("\"/opt/My App/run\" \"a b\" %u"), (ExecCommand{"/opt/My App/run", {"a b"}}));
}

TEST(ExecKey, SkipsEnvAssignmentsAndShells) {
  EXPECT_EQ(parseExecKey("env GDK_BACKEND=x11 A= inkscape %F"), (ExecCommand{"inkscape", {}}));
  EXPECT_EQ(parseExecKey("/usr/bin/env -i -u HOME LANG=C app"), (ExecCommand{"app", {}}));
  EXPECT_EQ(parseExecKey("BAMF_DESKTOP_FILE_HINT=/x.desktop /snap/bin/app %U"),
            (ExecCommand{"/snap/bin/app", {}}));
  EXPECT_EQ(parseExecKey("sh -c \"exec env A=1 app --flag\""), (ExecCommand{"app", {"--flag"}}));
  EXPECT_EQ(parseExecKey("bash -c 'app %F'"), (ExecCommand{"app", {}}));
}

TEST(ExecKey, IsNulloptWithoutAProgram) {
  for (const auto* exec : {"", "   ", "%U", "env", "env A=1", "sh -c ''", "\"\"", "\"unclosed", "env -u"}) {
    EXPECT_EQ(parseExecKey(exec), std::nullopt) << exec;
  }
}

TEST(ExecKey, IsNulloptIfTooLong) {
  std::string exec = "app";
  for (int word = 0; word < 10'000; ++word) exec += " word";
  EXPECT_EQ(parseExecKey(exec), std::nullopt);
}

TEST(IsLauncher, IsTrueForShellsInterpretersAndLaunchers) {
  for (const auto* name : {"sh", "bash", "python3", "python3.11", "perl", "node", "lua5.4", "gjs", "java",
                           "flatpak", "env", "pkexec", "wish8.6"}) {
    EXPECT_TRUE(isLauncher(name)) << name;
  }
  for (const auto* name : {"firefox", "pythonista", "javaws", "shotwell", "nodejs-editor", "", "perldoc"}) {
    EXPECT_FALSE(isLauncher(name)) << name;
  }
}

}  // namespace
}  // namespace tarn
