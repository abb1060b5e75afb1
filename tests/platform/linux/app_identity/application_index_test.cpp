// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/application_index.hpp"

#include <gtest/gtest.h>

#include <ctime>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

class ApplicationIndexTest : public ::testing::Test {
 protected:
  void add(const std::string& id, const std::string& exec, const std::string& otherKeys = "") const {
    addTo("usr/share", id, exec, otherKeys);
  }
  void addTo(const std::string& data, const std::string& id, const std::string& exec,
             const std::string& otherKeys = "") const {
    tree_.write(data + "/applications/" + id + ".desktop",
                "[Desktop Entry]\nType=Application\nName=" + id + "\nExec=" + exec + '\n' + otherKeys);
  }
  void addProgram(const std::string& path) const { tree_.write(path, ""); }

  /// The desktop id in a lookup's result; empty for null.
  static std::string idOf(const std::string* file) {
    return file == nullptr ? "" : std::filesystem::path(*file).stem().string();
  }
  std::string byExecutable(const std::string& path) {
    index_.refresh();
    return idOf(index_.byExecutable(path));
  }
  std::string byDirectory(const std::string& path) {
    index_.refresh();
    return idOf(index_.byPrivateDirectory(path));
  }

  TemporaryTree tree_;
  ApplicationIndex index_{tree_.roots(), {"/home/a/.local/share", "/usr/share"}, {"/usr/bin"}};
};

TEST_F(ApplicationIndexTest, FindsApplicationsByExecutable) {
  addProgram("usr/bin/editor");
  addProgram("opt/tool/run");
  add("editor", "editor %F");
  add("org.example.Tool", "/opt/tool/run");
  EXPECT_EQ(byExecutable("/usr/bin/editor"), "editor");
  EXPECT_EQ(byExecutable("/opt/tool/run"), "org.example.Tool");
  EXPECT_EQ(byExecutable("/usr/bin/other"), "");
  EXPECT_EQ(*index_.byExecutable("/usr/bin/editor"), "/usr/share/applications/editor.desktop");
}

TEST_F(ApplicationIndexTest, ResolvesSymbolicLinksOfPrograms) {
  addProgram("usr/lib/office/program/main");
  tree_.link("usr/bin/office", "../lib/office/program/main");
  add("office", "office");
  EXPECT_EQ(byExecutable("/usr/lib/office/program/main"), "office");
  EXPECT_EQ(byDirectory("/usr/lib/office/program/helper.bin"), "office");
  EXPECT_EQ(byDirectory("/usr/lib/office/share/other"), "office") << "the directory has the name of the link";
}

TEST_F(ApplicationIndexTest, PrefersTheEntryWithTheFewestArguments) {
  addProgram("usr/bin/office");
  add("a-writer", "office --writer %U");
  add("office", "office %U");
  add("z-calc", "office --calc %U");
  EXPECT_EQ(byExecutable("/usr/bin/office"), "office");
  EXPECT_EQ(byDirectory("/usr/lib/office/soffice.bin"), "office");
}

TEST_F(ApplicationIndexTest, PrefersEntriesOfTheUser) {
  addProgram("usr/bin/editor");
  addProgram("usr/bin/mine");
  add("editor", "editor");
  addTo("home/a/.local/share", "editor", "mine");
  EXPECT_EQ(byExecutable("/usr/bin/mine"), "editor");
  EXPECT_EQ(byExecutable("/usr/bin/editor"), "") << "the system's file of the same id is hidden";
}

TEST_F(ApplicationIndexTest, IgnoresExecutablesOfNoDisplayTerminalAndHiddenEntries) {
  for (const auto* program : {"a", "b", "c"}) addProgram(std::string("usr/bin/") + program);
  add("a", "a", "NoDisplay=true\n");
  add("b", "b", "Terminal=true\n");
  add("c", "c", "Hidden=true\n");
  for (const auto* program : {"a", "b", "c"}) EXPECT_EQ(byExecutable(std::string("/usr/bin/") + program), "");
  EXPECT_EQ(idOf(index_.byId("a")), "a") << "byId finds the entry";
  EXPECT_EQ(idOf(index_.byId("b")), "b");
  EXPECT_EQ(index_.byId("c"), nullptr);
}

TEST_F(ApplicationIndexTest, UsesTheScriptOfAnInterpreterAndIgnoresLaunchers) {
  for (const auto* program : {"python3", "flatpak", "viewer"}) addProgram(std::string("usr/bin/") + program);
  tree_.link("usr/bin/interpreter-link", "python3");
  add("viewer", "python3 /usr/bin/viewer");
  add("org.sandboxed.App", "flatpak run org.sandboxed.App");
  add("interpreter-link", "interpreter-link");
  EXPECT_EQ(byExecutable("/usr/bin/viewer"), "viewer");
  EXPECT_EQ(byExecutable("/usr/bin/python3"), "");
  EXPECT_EQ(byExecutable("/usr/bin/flatpak"), "");
}

TEST_F(ApplicationIndexTest, FindsPrivateDirectoriesByProgramIdAndDirectory) {
  addProgram("usr/bin/browser");
  addProgram("opt/vendor/product/start");
  add("browser", "browser");
  add("org.example.Notes", "notes");
  add("product", "/opt/vendor/product/start");
  EXPECT_EQ(byDirectory("/usr/lib/browser/browser-bin"), "browser");
  EXPECT_EQ(byDirectory("/usr/libexec/notes/helper"), "org.example.Notes");
  EXPECT_EQ(byDirectory("/usr/share/org.example.Notes/main.js"), "org.example.Notes");
  EXPECT_EQ(byDirectory("/opt/vendor/product/lib/worker"), "product");
  EXPECT_EQ(byDirectory("/opt/vendor/another/worker"), "") << "another application of the same vendor";
  EXPECT_EQ(byDirectory("/usr/lib/systemd/systemd"), "");
}

TEST_F(ApplicationIndexTest, FindsDBusServicesWithTheIdOfAnApplication) {
  addProgram("usr/libexec/files-service");
  addProgram("usr/libexec/other-service");
  add("org.example.Files", "files");
  tree_.write(
      "usr/share/dbus-1/services/org.example.Files.service",
      "[D-BUS Service]\nName=org.example.Files\nExec=/usr/libexec/files-service --gapplication-service\n");
  tree_.write("usr/share/dbus-1/services/other.service",
              "[D-BUS Service]\nName=org.other\nExec=/usr/libexec/other-service\n");
  index_.refresh();
  EXPECT_EQ(idOf(index_.byServiceExecutable("/usr/libexec/files-service")), "org.example.Files");
  EXPECT_EQ(index_.byServiceExecutable("/usr/libexec/other-service"), nullptr);
}

TEST_F(ApplicationIndexTest, IdsOfFilesInSubdirectoriesIncludeTheDirectoryNames) {
  addProgram("usr/bin/konsole");
  add("kde/konsole", "konsole");
  index_.refresh();
  EXPECT_EQ(idOf(index_.byId("kde-konsole")), "konsole");
}

TEST_F(ApplicationIndexTest, IsRebuiltOnlyWhenADirectoryChanges) {
  addProgram("usr/bin/editor");
  add("editor", "editor");
  EXPECT_TRUE(index_.refresh());
  EXPECT_FALSE(index_.refresh());
  EXPECT_EQ(index_.size(), 1U);
  addTo("home/a/.local/share", "added", "editor --added");
  EXPECT_TRUE(index_.refresh()) << "a new directory";
  EXPECT_EQ(index_.size(), 2U);
  tree_.remove("usr/share/applications/editor.desktop");
  EXPECT_TRUE(index_.refresh());
  EXPECT_EQ(byExecutable("/usr/bin/editor"), "added");
}

TEST_F(ApplicationIndexTest, ToleratesInvalidFiles) {
  addProgram("usr/bin/editor");
  add("editor", "editor");
  std::string manyArguments = "editor";
  for (int i = 0; i < 10'000; ++i) manyArguments += " x";
  add("many-arguments", manyArguments);
  add("huge", "editor", std::string(50 << 20, '#'));
  add("zeros", std::string("editor\0--zero", 13));
  add("markup", "editor --markup", "Name=<b>x</b>\x1b[31m\n");
  tree_.pipe("usr/share/applications/pipe.desktop");
  tree_.link("usr/share/applications/loop.desktop", "loop.desktop");
  tree_.link("usr/share/applications/up", "..");
  tree_.link("usr/share/applications/device.desktop", "/dev/zero");
  tree_.write("usr/share/applications/folder.desktop/a.desktop", "[Desktop Entry]\n");
  EXPECT_EQ(byExecutable("/usr/bin/editor"), "editor");
  EXPECT_EQ(index_.byId("huge"), nullptr);
  EXPECT_EQ(index_.byId("zeros"), nullptr);
  EXPECT_EQ(index_.byId("pipe"), nullptr);
  EXPECT_EQ(index_.byId("device"), nullptr);
}

TEST_F(ApplicationIndexTest, VisitsEachDirectoryOnceInSymbolicLinkCycles) {
  addProgram("usr/bin/editor");
  add("editor", "editor");
  for (int link = 0; link < 30; ++link) {
    tree_.link("usr/share/applications/a" + std::to_string(link), ".");
  }
  index_.refresh();
  EXPECT_EQ(index_.size(), 1U);
  EXPECT_EQ(byExecutable("/usr/bin/editor"), "editor");
  EXPECT_EQ(index_.byId("a0-editor"), nullptr);
}

TEST_F(ApplicationIndexTest, LimitsTheNumberOfDirectoriesBelowALink) {
  addProgram("usr/bin/editor");
  add("editor", "editor");
  for (int folder = 0; folder < 2'000; ++folder)
    tree_.write("many-folders/" + std::to_string(folder) + "/x", "");
  // The user's data directory comes first; reaching its limit does not affect the next one.
  tree_.link("home/a/.local/share/applications/z", tree_.at("many-folders").string());
  index_.refresh();
  EXPECT_EQ(byExecutable("/usr/bin/editor"), "editor");
  EXPECT_LE(index_.watchedDirectoryCount(), 600U);
}

TEST_F(ApplicationIndexTest, IsEmptyWithoutDesktopFiles) {
  EXPECT_TRUE(index_.refresh());
  EXPECT_FALSE(index_.refresh());
  EXPECT_EQ(index_.size(), 0U);
  EXPECT_EQ(byExecutable(""), "");
  EXPECT_EQ(byDirectory(""), "");
}

TEST_F(ApplicationIndexTest, IndexesFiveHundredLargeFiles) {
  for (int i = 0; i < 500; ++i) {
    const std::string number = std::to_string(i);
    std::string translations;
    for (int language = 0; language < 40; ++language) {
      translations += "Name[l" + std::to_string(language) + "]=Application in some language\n";
      translations +=
          "Comment[l" + std::to_string(language) + "]=What it does, in some words of that language\n";
    }
    addProgram("usr/bin/program" + number);
    add("org.example.Application" + number, "program" + number + " %U", translations);
  }
  const std::clock_t start = std::clock();
  index_.refresh();
  const double milliseconds = 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  RecordProperty("milliseconds", std::to_string(milliseconds));
  EXPECT_EQ(index_.size(), 500U);
}

}  // namespace
}  // namespace tarn
