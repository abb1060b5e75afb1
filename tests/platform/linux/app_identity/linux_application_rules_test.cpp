// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/linux_application_rules.hpp"

#include <gtest/gtest.h>

#include <map>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

/// A process as its files tell of it.
struct Process {
  std::string executable = {};
  std::string arguments = {};  ///< separated by blanks
  std::string controlGroup = "/user.slice/session-1.scope";
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
    tree_.write(directory + "cgroup", "0::" + process.controlGroup + '\n');
    generations_[pid] = ++generation_;
  }

  /// The id of the application of a process; "" without one.
  std::string applicationOf(std::int32_t pid) {
    return std::filesystem::path(rules_.applicationRoot(pid, "").string()).stem().string();
  }
  std::string applicationOf(const Process& process) {
    start(99, process);
    return applicationOf(99);
  }

  TemporaryTree tree_;
  std::map<std::int32_t, std::uint64_t> generations_;
  std::uint64_t generation_ = 0;
  std::chrono::steady_clock::time_point now_;
  LinuxApplicationRules rules_{tree_.roots(), ApplicationIndex(tree_.roots(), {"/usr/share"}, {"/usr/bin"}),
                               [this](std::int32_t pid) -> std::optional<std::uint64_t> {
                                 const auto found = generations_.find(pid);
                                 return found == generations_.end() ? std::nullopt
                                                                    : std::optional(found->second);
                               },
                               [this] { return now_; }};
};

TEST_F(ApplicationRulesTest, KnowTheExecutableOfADesktopFile) {
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor"}), "editor");
  EXPECT_EQ(rules_.applicationRoot(99, ""), "/usr/share/applications/editor.desktop");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/daemon"}), "");
}

TEST_F(ApplicationRulesTest, KnowThePrivateDirectory) {
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/lib/editor/worker"}), "editor");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/lib/firefox-esr/plugin-container"}), "firefox-esr");
}

TEST_F(ApplicationRulesTest, KnowTheSandboxWhateverThePathsWithinIt) {
  const std::string group = "/user.slice/app.slice/app-flatpak-org.sandboxed.App-123.scope";
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor", .controlGroup = group}),
            "org.sandboxed.App");
  EXPECT_EQ(applicationOf(Process{.executable = "/snap/x/1/bin/x",
                                  .controlGroup = "/user.slice/snap.snapped.snapped.1-2.scope"}),
            "snapped_snapped");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor",
                                  .controlGroup = "/user.slice/app-flatpak-org.unknown-1.scope"}),
            "")
      << "another program by that path";
}

TEST_F(ApplicationRulesTest, KnowTheScriptOfAnInterpreter) {
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
      << "an argument of what is no interpreter";
}

TEST_F(ApplicationRulesTest, KnowTheSessionManagersUnit) {
  const std::string group = "/user.slice/app.slice/app-gnome-org.example.Files-77.scope";
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/bash", .arguments = "bash", .controlGroup = group}),
            "org.example.Files");
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor", .controlGroup = group}), "editor")
      << "its own executable says more";
  EXPECT_EQ(applicationOf(Process{.controlGroup = group}), "org.example.Files") << "without a path";
}

TEST_F(ApplicationRulesTest, KnowTheImageAnApplicationWasStartedFrom) {
  tree_.write("tmp/.mount_paintXyz/paint.desktop", "[Desktop Entry]\nType=Application\n");
  const Process inside{.executable = "/tmp/.mount_paintXyz/usr/bin/paint"};
  start(99, inside);
  EXPECT_EQ(rules_.applicationRoot(99, ""), "/tmp/.mount_paintXyz/paint.desktop");
  EXPECT_EQ(applicationOf(Process{.executable = "/tmp/.mount_gone/usr/bin/paint"}), "");
}

TEST_F(ApplicationRulesTest, ReadNoFileOfAProcessThatTheyKnow) {
  start(40, {.executable = "/usr/bin/editor"});
  EXPECT_EQ(applicationOf(40), "editor");
  tree_.remove("proc/40");
  EXPECT_EQ(applicationOf(40), "editor");
  start(41, {.executable = "/usr/bin/nothing"});
  EXPECT_EQ(applicationOf(41), "");
  tree_.link("proc/41/exe", "/usr/bin/editor");
  EXPECT_EQ(applicationOf(41), "") << "nor of one that is known to belong to none";
}

TEST_F(ApplicationRulesTest, LookAfreshAtAProcessThatStartedAnotherProgram) {
  start(40, {.executable = "/usr/bin/dash", .arguments = "sh /usr/bin/wrapper"});
  EXPECT_EQ(applicationOf(40), "");
  start(40, {.executable = "/usr/bin/editor"});
  EXPECT_EQ(applicationOf(40), "editor");
}

TEST_F(ApplicationRulesTest, KnowNothingOfAProcessThatIsGone) {
  EXPECT_EQ(applicationOf(40), "");
}

TEST_F(ApplicationRulesTest, LookAtAllAgainWhenTheApplicationsChange) {
  start(40, {.executable = "/usr/bin/late"});
  EXPECT_EQ(applicationOf(40), "");
  add("late", "/usr/bin/late");
  now_ += std::chrono::seconds(3);
  EXPECT_EQ(applicationOf(Process{.executable = "/usr/bin/editor"}), "editor") << "a new process comes";
  EXPECT_EQ(applicationOf(40), "late");
}

TEST_F(ApplicationRulesTest, ForgetProcessesThatAreGone) {
  for (std::int32_t pid = 1000; pid < 3000; ++pid) {
    start(pid, {.executable = "/usr/bin/editor"});
    EXPECT_EQ(applicationOf(pid), "editor");
    generations_.erase(pid);
    tree_.remove("proc/" + std::to_string(pid));
  }
  EXPECT_LE(rules_.knownProcessCount(), 600U);
}

}  // namespace
}  // namespace tarn
