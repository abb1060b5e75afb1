// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/linux_application_rules.hpp"

#include <gmock/gmock.h>

#include <map>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

/// The content of a process's files in procfs.
struct Process {
  std::string executable = {};
  std::string arguments = {};  ///< separated by spaces
  std::string cgroup = "/user.slice/session-1.scope";
};

class ApplicationRulesTest : public ::testing::Test {
 protected:
  ApplicationRulesTest() {
    for (const auto* id :
         {"editor", "org.example.Files", "org.sandboxed.App", "snapped_snapped", "firefox-esr"})
      add(id, "/usr/bin/" + std::string(id));
  }

  void add(const std::string& id, const std::string& program) {
    tree_.write(program.substr(1), "");
    tree_.write("usr/share/applications/" + id + ".desktop",
                "[Desktop Entry]\nType=Application\nExec=" + program + '\n');
  }

  void start(std::int32_t pid, const Process& process) {
    const std::string directory = "proc/" + std::to_string(pid) + '/';
    if (process.executable.empty()) {
      tree_.remove(directory + "exe");
    } else {
      tree_.link(directory + "exe", process.executable);
    }
    std::string arguments = process.arguments;
    std::replace(arguments.begin(), arguments.end(), ' ', '\0');
    tree_.write(directory + "cmdline", arguments + '\0');
    tree_.write(directory + "cgroup", "0::" + process.cgroup + '\n');
    execIds_[pid] = ++lastExecId_;
  }

  /// The desktop id of the application of a process; empty if there is none.
  std::string applicationOf(std::int32_t pid) {
    return std::filesystem::path(rules_.applicationRoot(pid, "").string()).stem().string();
  }
  std::string applicationOf(const Process& process) {
    start(99, process);
    return applicationOf(99);
  }

  TemporaryTree tree_;
  std::map<std::int32_t, std::uint64_t> execIds_;
  std::uint64_t lastExecId_ = 0;
  std::chrono::steady_clock::time_point now_;
  LinuxApplicationRules rules_{tree_.roots(), ApplicationIndex(tree_.roots(), {"/usr/share"}, {"/usr/bin"}),
                               [this](std::int32_t pid) -> std::optional<std::uint64_t> {
                                 const auto entry = execIds_.find(pid);
                                 return entry == execIds_.end() ? std::nullopt : std::optional(entry->second);
                               },
                               [this] { return now_; }};
};

TEST_F(ApplicationRulesTest, MatchTheExecutableOfADesktopFile) {
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor"}), "editor");
  EXPECT_EQ(rules_.applicationRoot(99, ""), "/usr/share/applications/editor.desktop");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/daemon"}), "");
}

TEST_F(ApplicationRulesTest, MatchThePrivateDirectory) {
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/lib/editor/worker"}), "editor");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/lib/firefox-esr/plugin-container"}), "firefox-esr");
}

TEST_F(ApplicationRulesTest, MatchTheSandboxAndIgnorePathsWithinIt) {
  const std::string group = "/user.slice/app.slice/app-flatpak-org.sandboxed.App-123.scope";
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor", .cgroup = group}), "org.sandboxed.App");
  EXPECT_EQ(applicationOf(Process{.executable = "/snap/x/1/bin/x",
                                  .cgroup = "/user.slice/snap.snapped.snapped.1-2.scope"}),
            "snapped_snapped");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor",
                                  .cgroup = "/user.slice/app-flatpak-org.unknown-1.scope"}),
            "")
      << "the path is that of another program";
}

TEST_F(ApplicationRulesTest, MatchTheScriptOfAnInterpreter) {
  EXPECT_EQ(
      applicationOf(Process{.executable = "/usr/bin/python3.11", .arguments = "python3 /usr/bin/editor"}),
      "editor");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/python3.11",
                                  .arguments = "python3 -u /usr/share/editor/main.py"}),
            "editor");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/lib/jvm/java-17/bin/java",
                                  .arguments = "java -jar /usr/share/editor/editor.jar"}),
            "editor");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/gcc", .arguments = "gcc /usr/bin/editor"}), "")
      << "gcc is not an interpreter";
}

TEST_F(ApplicationRulesTest, MatchTheSystemdUnit) {
  const std::string group = "/user.slice/app.slice/app-gnome-org.example.Files-77.scope";
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/bash", .arguments = "bash", .cgroup = group}),
            "org.example.Files");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor", .cgroup = group}), "editor")
      << "the executable has priority";
  EXPECT_EQ(applicationOf(Process{.cgroup = group}), "org.example.Files") << "without a path";
}

TEST_F(ApplicationRulesTest, MatchTheDesktopFileInAnAppImage) {
  tree_.write("tmp/.mount_paintXyz/paint.desktop", "[Desktop Entry]\nType=Application\n");
  const Process inside{.executable = "/tmp/.mount_paintXyz/usr/bin/paint"};
  start(99, inside);
  EXPECT_EQ(rules_.applicationRoot(99, ""), "/tmp/.mount_paintXyz/paint.desktop");
  EXPECT_EQ(applicationOf(Process{.executable = "/tmp/.mount_gone/usr/bin/paint"}), "");
}

TEST_F(ApplicationRulesTest, ReadNoFileOfACachedProcess) {
  start(40, {.executable = "/usr/bin/editor"});
  EXPECT_EQ(applicationOf(40), "editor");
  tree_.remove("proc/40");
  EXPECT_EQ(applicationOf(40), "editor");
  start(41, {.executable = "/usr/bin/nothing"});
  EXPECT_EQ(applicationOf(41), "");
  tree_.link("proc/41/exe", "/usr/bin/editor");
  EXPECT_EQ(applicationOf(41), "") << "the empty result is cached, too";
}

TEST_F(ApplicationRulesTest, ReadAProcessAgainAfterItExecutedAnotherProgram) {
  start(40, {.executable = "/usr/bin/dash", .arguments = "sh /usr/bin/wrapper"});
  EXPECT_EQ(applicationOf(40), "");
  start(40, {.executable = "/usr/bin/editor"});
  EXPECT_EQ(applicationOf(40), "editor");
}

TEST_F(ApplicationRulesTest, ReturnNoApplicationForAProcessThatHasExited) {
  EXPECT_EQ(applicationOf(40), "");
}

TEST_F(ApplicationRulesTest, ReadAllProcessesAgainWhenDesktopFilesChange) {
  start(40, {.executable = "/usr/bin/viewer"});
  EXPECT_EQ(applicationOf(40), "");
  add("viewer", "/usr/bin/viewer");
  now_ += std::chrono::seconds(3);
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor"}), "editor")
      << "a new process triggers the refresh";
  EXPECT_EQ(applicationOf(40), "viewer");
}

TEST_F(ApplicationRulesTest, PruneProcessesThatHaveExited) {
  for (std::int32_t pid = 1000; pid < 3000; ++pid) {
    start(pid, {.executable = "/usr/bin/editor"});
    EXPECT_EQ(applicationOf(pid), "editor");
    execIds_.erase(pid);
    tree_.remove("proc/" + std::to_string(pid));
  }
  EXPECT_LE(rules_.knownProcessCount(), 600U);
}

TEST(ProcessOrigin, IsReadFromProcfs) {
  const TemporaryTree tree;
  tree.link("proc/40/exe", "/usr/bin/python3.11 (deleted)");
  tree.write("proc/40/cmdline", "python3\0/usr/bin/app\0"s);
  tree.write("proc/40/cgroup", "0::/user.slice/app-x-1.scope\n");
  const ProcessOrigin origin = readProcessOrigin(tree.roots(), 40);
  EXPECT_EQ(origin.executable, "/usr/bin/python3.11");
  EXPECT_THAT(readArguments(tree.roots(), 40), ElementsAre("python3", "/usr/bin/app"));
  EXPECT_EQ(origin.cgroup, "/user.slice/app-x-1.scope");
}

TEST(ProcessOrigin, IsEmptyForAProcessThatHasExited) {
  const TemporaryTree tree;
  const ProcessOrigin origin = readProcessOrigin(tree.roots(), 40);
  EXPECT_EQ(origin.executable, "");
  EXPECT_THAT(readArguments(tree.roots(), 40), IsEmpty());
  EXPECT_EQ(origin.cgroup, "");
}

}  // namespace
}  // namespace tarn
