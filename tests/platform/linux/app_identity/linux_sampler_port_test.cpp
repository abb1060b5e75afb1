// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/data_directories.hpp"

#include <gmock/gmock.h>

#include <map>

namespace tarn {
namespace {

using testing::ElementsAre;
using Variables = std::map<std::string, std::string>;

Environment environmentOf(Variables variables) {
  return [variables = std::move(variables)](const char* name) {
    const auto found = variables.find(name);
    return found == variables.end() ? std::string() : found->second;
  };
}

TEST(DataDirectories, AreTheUsersThenTheSystemsThenWhatSandboxesExport) {
  EXPECT_THAT(dataDirectories(environmentOf({{"HOME", "/home/a"}})),
              ElementsAre("/home/a/.local/share", "/usr/local/share", "/usr/share",
                          "/home/a/.local/share/flatpak/exports/share", "/var/lib/flatpak/exports/share",
                          "/var/lib/snapd/desktop"));
}

TEST(DataDirectories, FollowTheEnvironmentAndNameEachOnce) {
  EXPECT_THAT(
      dataDirectories(environmentOf({{"HOME", "/home/a"},
                                     {"XDG_DATA_HOME", "/data/"},
                                     {"XDG_DATA_DIRS", "/var/lib/snapd/desktop:/usr/share/::/usr/share"}})),
      ElementsAre("/data", "/var/lib/snapd/desktop", "/usr/share", "/data/flatpak/exports/share",
                  "/var/lib/flatpak/exports/share"));
}

TEST(DataDirectories, PassOverRelativeOnes) {
  EXPECT_THAT(dataDirectories(environmentOf({{"XDG_DATA_HOME", "share"}, {"XDG_DATA_DIRS", "a:/b:c"}})),
              ElementsAre("/b", "/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"));
}

TEST(ProgramDirectories, AreThoseOfThePathAndTheUsualOnes) {
  EXPECT_THAT(programDirectories(environmentOf({{"PATH", "/home/a/bin:.:/usr/bin"}})),
              ElementsAre("/home/a/bin", "/usr/bin", "/usr/local/bin", "/bin", "/usr/games", "/snap/bin"));
}

}  // namespace
}  // namespace tarn
