// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/linux_sampler_port.hpp"

#include <gmock/gmock.h>

#include <map>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using Variables = std::map<std::string, std::string>;

Environment environmentOf(Variables variables) {
  return [variables = std::move(variables)](const char* name) {
    const auto entry = variables.find(name);
    return entry == variables.end() ? std::string() : entry->second;
  };
}

TEST(DataDirectories, ListTheUserThenTheSystemThenFlatpakAndSnapd) {
  EXPECT_THAT(dataDirectories(environmentOf({{"HOME", "/home/a"}})),
              ElementsAre("/home/a/.local/share", "/usr/local/share", "/usr/share",
                          "/home/a/.local/share/flatpak/exports/share", "/var/lib/flatpak/exports/share",
                          "/var/lib/snapd/desktop"));
}

TEST(DataDirectories, FollowTheEnvironmentWithoutDuplicates) {
  EXPECT_THAT(
      dataDirectories(environmentOf({{"HOME", "/home/a"},
                                     {"XDG_DATA_HOME", "/data/"},
                                     {"XDG_DATA_DIRS", "/var/lib/snapd/desktop:/usr/share/::/usr/share"}})),
      ElementsAre("/data", "/var/lib/snapd/desktop", "/usr/share", "/data/flatpak/exports/share",
                  "/var/lib/flatpak/exports/share"));
}

TEST(DataDirectories, IgnoreRelativePaths) {
  EXPECT_THAT(dataDirectories(environmentOf({{"XDG_DATA_HOME", "share"}, {"XDG_DATA_DIRS", "a:/b:c"}})),
              ElementsAre("/b", "/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"));
}

TEST(ProgramDirectories, ListPathThenTheUsualDirectories) {
  EXPECT_THAT(programDirectories(environmentOf({{"PATH", "/home/a/bin:.:/usr/bin"}})),
              ElementsAre("/home/a/bin", "/usr/bin", "/usr/local/bin", "/bin", "/usr/games", "/snap/bin"));
}

class LinuxSamplerPortTest : public testing::Test {
 protected:
  LinuxSamplerPortTest() {
    tree_.write("proc/stat", "btime 1700000000\n");
    ProcessFixture{.pid = 40}.writeTo(tree_);
    tree_.link("proc/40/exe", "/usr/bin/editor");
    tree_.write("usr/bin/editor", "");
    tree_.write("usr/share/applications/editor.desktop",
                "[Desktop Entry]\nType=Application\nName=Editor\nExec=editor\n");
  }

  TemporaryTree tree_;
};

TEST_F(LinuxSamplerPortTest, UsesTheGivenClocks) {
  SamplerClocks clocks;
  clocks.processes = [](std::int32_t) { return std::optional<std::uint64_t>(5); };
  clocks.uptime = [] { return 7.0; };
  const SamplerPort port = makeLinuxSamplerPort(tree_.roots(), environmentOf({}), std::move(clocks));
  EXPECT_EQ(port.uptime(), 7.0);
  EXPECT_THAT(port.processes->allPIDs(), ElementsAre(40));
  ASSERT_TRUE(port.processes->bsdInfo(40));
  EXPECT_EQ(port.processes->usage(40)->cpuTime, 5U);
}

TEST_F(LinuxSamplerPortTest, RulesKeepTheProcessSourceAlive) {
  SamplerPort port = makeLinuxSamplerPort(tree_.roots(), environmentOf({}));
  EXPECT_THAT(port.processes->allPIDs(), ElementsAre(40));
  ASSERT_TRUE(port.processes->bsdInfo(40));
  port.processes.reset();
  EXPECT_EQ(port.applicationRules->applicationRoot(40, ""), "/usr/share/applications/editor.desktop");
}

}  // namespace
}  // namespace tarn
