// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/desktop_id_candidates.hpp"

#include <gmock/gmock.h>

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto slice = "/user.slice/user-1000.slice/user@1000.service/app.slice/";

std::string inSlice(const std::string& unit) {
  return slice + unit;
}

TEST(SandboxIds, AreAFlatpaks) {
  EXPECT_THAT(sandboxIds(inSlice("app-flatpak-org.mozilla.firefox-12345.scope")),
              ElementsAre("org.mozilla.firefox"));
  EXPECT_THAT(sandboxIds(inSlice("app-flatpak-com.example.my\\x2dapp-7.scope")),
              ElementsAre("com.example.my-app"));
}

TEST(SandboxIds, AreASnaps) {
  EXPECT_THAT(sandboxIds(inSlice("snap.firefox.firefox.0a1b-22.scope")), ElementsAre("firefox_firefox"));
  EXPECT_THAT(sandboxIds(inSlice("snap.gimp.gimp-77.scope")), ElementsAre("gimp_gimp-77", "gimp_gimp"));
  EXPECT_THAT(sandboxIds("/system.slice/snap.lxd.daemon.service"), ElementsAre("lxd_daemon", "lxd_lxd"));
}

TEST(SandboxIds, AreNoneWhereTheUnitIsNamedForNothing) {
  for (const auto* unit : {"snap.scope", "snap.service", "app-flatpak-.scope"}) {
    EXPECT_THAT(sandboxIds(inSlice(unit)), IsEmpty()) << unit;
  }
}

TEST(SandboxIds, AreNoneOutsideOfSandboxes) {
  for (const auto* group :
       {"", "/", "/init.scope", "/user.slice/session-2.scope", "/snap", "/app-flatpak-x"}) {
    EXPECT_THAT(sandboxIds(group), IsEmpty()) << group;
  }
  EXPECT_THAT(sandboxIds(inSlice("app-org.kde.kate-1.scope")), IsEmpty());
}

TEST(UnitIds, AreThoseThatLaunchersWrite) {
  EXPECT_EQ(unitIds(inSlice("app-org.gnome.Terminal-9921.scope")).front(), "org.gnome.Terminal");
  EXPECT_EQ(unitIds(inSlice("app-gnome-org.gnome.Nautilus-2210.scope")).front(), "org.gnome.Nautilus");
  EXPECT_EQ(unitIds(inSlice("app-org.kde.konsole-0a1b2c.scope")).front(), "org.kde.konsole");
  EXPECT_EQ(unitIds(inSlice("app-gnome-firefox\\x2desr-4711.scope")).front(), "firefox-esr");
  EXPECT_EQ(unitIds(inSlice("app-org.kde.kate@5f0c.service")).front(), "org.kde.kate");
  EXPECT_EQ(unitIds(inSlice("app-org.kde.discover.service")).front(), "org.kde.discover");
}

TEST(UnitIds, IncludeThoseWhoseHyphensAreNotEscaped) {
  EXPECT_THAT(unitIds(inSlice("app-firefox-esr-4711.scope")), ElementsAre("esr", "firefox-esr"));
  EXPECT_THAT(unitIds(inSlice("app-gnome-firefox-esr-4711.scope")),
              ElementsAre("esr", "firefox-esr", "gnome-firefox-esr"));
}

TEST(UnitIds, AreThoseOfTheInnermostUnit) {
  EXPECT_THAT(unitIds(inSlice("app-org.gnome.Terminal-1.scope/app-code-2.scope")), ElementsAre("code"));
}

TEST(UnitIds, AreThoseOfTheApplicationsSliceWhereItsUnitsHaveOtherNames) {
  EXPECT_THAT(unitIds(inSlice("app-org.gnome.Terminal.slice/vte-spawn-5f1b8fbc.scope")),
              ElementsAre("org.gnome.Terminal"));
  EXPECT_THAT(unitIds(inSlice("app-org.gnome.Terminal.slice/app-code-2.scope")), ElementsAre("code"));
}

TEST(UnitIds, AreNoneOfOtherUnits) {
  for (const auto* group : {"", "/", "/user.slice/session-2.scope", "/system.slice/cron.service",
                            "/app.slice", "/app-x", "/user.slice/vte-spawn-1234.scope"}) {
    EXPECT_THAT(unitIds(group), IsEmpty()) << group;
  }
}

TEST(Script, IsTheFirstArgumentThatIsNoOption) {
  EXPECT_EQ(scriptOf({"python3", "/usr/bin/app", "x"}), "/usr/bin/app");
  EXPECT_EQ(scriptOf({"python3", "-u", "-W", "ignore", "/usr/share/app/main.py"}), "/usr/share/app/main.py");
  EXPECT_EQ(scriptOf({"java", "-Xmx2g", "-jar", "/usr/share/app/app.jar"}), "/usr/share/app/app.jar");
  EXPECT_EQ(scriptOf({"java", "-cp", "/usr/share/java/x.jar", "/opt/app/app.jar"}), "/opt/app/app.jar");
}

TEST(Script, IsWhereTheClassIsLookedFor) {
  EXPECT_EQ(scriptOf({"java", "-classpath", "/usr/share/jedit/jedit.jar:/usr/share/java/x.jar",
                      "org.jedit.Main", "-a"}),
            "/usr/share/jedit/jedit.jar");
  EXPECT_EQ(scriptOf({"java", "-cp", "/usr/share/app/a.jar", "/opt/app/app.jar"}), "/opt/app/app.jar");
  EXPECT_EQ(scriptOf({"java", "-cp", "/usr/share/app/a.jar"}), std::nullopt) << "it runs nothing";
}

TEST(Script, IsNoneWhereTheCodeIsElsewhere) {
  EXPECT_EQ(scriptOf({"python3", "-c", "print(1)", "/usr/bin/app"}), std::nullopt);
  EXPECT_EQ(scriptOf({"python3", "-m", "http.server", "/usr/bin/app"}), std::nullopt);
  EXPECT_EQ(scriptOf({"python3", "relative.py"}), std::nullopt);
  EXPECT_EQ(scriptOf({"java", "-cp", "x.jar", "org.example.Main"}), std::nullopt);
  EXPECT_EQ(scriptOf({"bash", "-"}), std::nullopt);
  EXPECT_EQ(scriptOf({"bash"}), std::nullopt);
  EXPECT_EQ(scriptOf({}), std::nullopt);
  EXPECT_EQ(scriptOf({"x", "-cp"}), std::nullopt);
}

TEST(ImageMount, IsTheDirectoryOfThatName) {
  EXPECT_EQ(imageMountOf("/tmp/.mount_kritaAbC123/usr/bin/krita"), "/tmp/.mount_kritaAbC123");
  for (const auto* path : {"/usr/bin/krita", "/tmp/.mount_", "/tmp/.mount_x", "/tmp/.mount_/x", ""}) {
    EXPECT_EQ(imageMountOf(path), std::nullopt) << path;
  }
}

TEST(PrivateDirectories, AreThoseBelowTheirRootsInnermostFirst) {
  EXPECT_THAT(privateDirectoriesOf("/usr/lib/firefox-esr/firefox-esr"), ElementsAre("/usr/lib/firefox-esr"));
  EXPECT_THAT(privateDirectoriesOf("/opt/google/chrome/chrome"),
              ElementsAre("/opt/google/chrome", "/opt/google"));
  EXPECT_THAT(privateDirectoriesOf("/usr/lib/x86_64-linux-gnu/webkit/WebProcess"),
              ElementsAre("/usr/lib/x86_64-linux-gnu/webkit"));
  EXPECT_THAT(privateDirectoriesOf("/usr/share/app/lib/main.py"),
              ElementsAre("/usr/share/app/lib", "/usr/share/app"));
}

TEST(PrivateDirectories, AreNoneElsewhere) {
  for (const auto* path : {"/usr/bin/vim", "/usr/lib/helper", "/usr/libexec/helper", "/home/a/bin/x",
                           "/opt/x", "", "/usr/lib/x86_64-linux-gnu/helper"}) {
    EXPECT_THAT(privateDirectoriesOf(path), IsEmpty()) << path;
  }
}

}  // namespace
}  // namespace tarn
