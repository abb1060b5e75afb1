// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/desktop_id_candidates.hpp"

#include <gmock/gmock.h>

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

constexpr auto slice = "/user.slice/user-1000.slice/user@1000.service/app.slice/";

std::string inSlice(const std::string& unit) {
  return slice + unit;
}

TEST(CgroupPath, IsTheVersion2PathElseTheSystemdPath) {
  EXPECT_EQ(parseCgroupPath("0::/user.slice/a.scope\n"), "/user.slice/a.scope");
  EXPECT_EQ(parseCgroupPath("12:cpu:/x\n1:name=systemd:/user.slice/b.scope\n0::/\n"), "/user.slice/b.scope");
  EXPECT_EQ(parseCgroupPath("1:name=systemd:/b\n0::/c\n"), "/c");
  for (const auto* text : {"", "\n", "garbage", "0::/\n", "5:memory:/x\n"}) {
    EXPECT_EQ(parseCgroupPath(text), "") << text;
  }
}

TEST(Arguments, AreSplitAtZeroBytesAndLimited) {
  EXPECT_THAT(parseArguments("python3\0/usr/bin/a\0\0x\0"s, true),
              ElementsAre("python3", "/usr/bin/a", "", "x"));
  EXPECT_THAT(parseArguments("a\0cut", true), ElementsAre("a"));
  EXPECT_THAT(parseArguments("a\0cut"s, true), ElementsAre("a", "cut"));
  EXPECT_THAT(parseArguments("a\0cut"s, false), ElementsAre("a"));
  EXPECT_THAT(parseArguments("", true), IsEmpty());
  EXPECT_EQ(parseArguments(std::string(100, '\0'), true).size(), 12U);
}

TEST(SandboxDesktopIds, AreTheIdOfAFlatpak) {
  EXPECT_THAT(sandboxDesktopIds(inSlice("app-flatpak-org.mozilla.firefox-12345.scope")),
              ElementsAre("org.mozilla.firefox"));
  EXPECT_THAT(sandboxDesktopIds(inSlice("app-flatpak-com.example.my\\x2dapp-7.scope")),
              ElementsAre("com.example.my-app"));
}

TEST(SandboxDesktopIds, AreTheIdsOfASnap) {
  EXPECT_THAT(sandboxDesktopIds(inSlice("snap.firefox.firefox.0a1b-22.scope")),
              ElementsAre("firefox_firefox"));
  EXPECT_THAT(sandboxDesktopIds(inSlice("snap.gimp.gimp-77.scope")),
              ElementsAre("gimp_gimp-77", "gimp_gimp"));
  EXPECT_THAT(sandboxDesktopIds("/system.slice/snap.lxd.daemon.service"),
              ElementsAre("lxd_daemon", "lxd_lxd"));
}

TEST(SandboxDesktopIds, AreEmptyIfTheUnitNameHasNoId) {
  for (const auto* unit : {"snap.scope", "snap.service", "app-flatpak-.scope"}) {
    EXPECT_THAT(sandboxDesktopIds(inSlice(unit)), IsEmpty()) << unit;
  }
}

TEST(SandboxDesktopIds, AreEmptyOutsideOfSandboxes) {
  for (const auto* group :
       {"", "/", "/init.scope", "/user.slice/session-2.scope", "/snap", "/app-flatpak-x"}) {
    EXPECT_THAT(sandboxDesktopIds(group), IsEmpty()) << group;
  }
  EXPECT_THAT(sandboxDesktopIds(inSlice("app-org.kde.kate-1.scope")), IsEmpty());
}

TEST(UnitDesktopIds, AreTheIdsInScopeAndServiceNames) {
  EXPECT_EQ(unitDesktopIds(inSlice("app-org.gnome.Terminal-9921.scope")).front(), "org.gnome.Terminal");
  EXPECT_EQ(unitDesktopIds(inSlice("app-gnome-org.gnome.Nautilus-2210.scope")).front(), "org.gnome.Nautilus");
  EXPECT_EQ(unitDesktopIds(inSlice("app-org.kde.konsole-0a1b2c.scope")).front(), "org.kde.konsole");
  EXPECT_EQ(unitDesktopIds(inSlice("app-gnome-firefox\\x2desr-4711.scope")).front(), "firefox-esr");
  EXPECT_EQ(unitDesktopIds(inSlice("app-org.kde.kate@5f0c.service")).front(), "org.kde.kate");
  EXPECT_EQ(unitDesktopIds(inSlice("app-org.kde.discover.service")).front(), "org.kde.discover");
}

TEST(UnitDesktopIds, IncludeIdsWithUnescapedHyphens) {
  EXPECT_THAT(unitDesktopIds(inSlice("app-firefox-esr-4711.scope")), ElementsAre("esr", "firefox-esr"));
  EXPECT_THAT(unitDesktopIds(inSlice("app-gnome-firefox-esr-4711.scope")),
              ElementsAre("esr", "firefox-esr", "gnome-firefox-esr"));
}

TEST(UnitDesktopIds, AreTheIdsOfTheInnermostUnit) {
  EXPECT_THAT(unitDesktopIds(inSlice("app-org.gnome.Terminal-1.scope/app-code-2.scope")),
              ElementsAre("code"));
}

TEST(UnitDesktopIds, AreTheIdsOfASliceIfTheInnerUnitIsNoApplication) {
  EXPECT_THAT(unitDesktopIds(inSlice("app-org.gnome.Terminal.slice/vte-spawn-5f1b8fbc.scope")),
              ElementsAre("org.gnome.Terminal"));
  EXPECT_THAT(unitDesktopIds(inSlice("app-org.gnome.Terminal.slice/app-code-2.scope")), ElementsAre("code"));
}

TEST(UnitDesktopIds, AreEmptyForOtherUnits) {
  for (const auto* group : {"", "/", "/user.slice/session-2.scope", "/system.slice/cron.service",
                            "/app.slice", "/app-x", "/user.slice/vte-spawn-1234.scope"}) {
    EXPECT_THAT(unitDesktopIds(group), IsEmpty()) << group;
  }
}

TEST(ScriptPath, IsTheFirstArgumentThatIsNoOption) {
  EXPECT_EQ(scriptPath({"python3", "/usr/bin/app", "x"}), "/usr/bin/app");
  EXPECT_EQ(scriptPath({"python3", "-u", "-W", "ignore", "/usr/share/app/main.py"}),
            "/usr/share/app/main.py");
  EXPECT_EQ(scriptPath({"java", "-Xmx2g", "-jar", "/usr/share/app/app.jar"}), "/usr/share/app/app.jar");
  EXPECT_EQ(scriptPath({"java", "-cp", "/usr/share/java/x.jar", "/opt/app/app.jar"}), "/opt/app/app.jar");
}

TEST(ScriptPath, IsTheFirstEntryOfTheClassPath) {
  EXPECT_EQ(scriptPath({"java", "-classpath", "/usr/share/jedit/jedit.jar:/usr/share/java/x.jar",
                        "org.jedit.Main", "-a"}),
            "/usr/share/jedit/jedit.jar");
  EXPECT_EQ(scriptPath({"java", "-cp", "/usr/share/app/a.jar", "/opt/app/app.jar"}), "/opt/app/app.jar");
  EXPECT_EQ(scriptPath({"java", "-cp", "/usr/share/app/a.jar"}), std::nullopt) << "without a class";
}

TEST(ScriptPath, IsNulloptWithoutAnAbsoluteScript) {
  EXPECT_EQ(scriptPath({"python3", "-c", "print(1)", "/usr/bin/app"}), std::nullopt);
  EXPECT_EQ(scriptPath({"python3", "-m", "http.server", "/usr/bin/app"}), std::nullopt);
  EXPECT_EQ(scriptPath({"python3", "relative.py"}), std::nullopt);
  EXPECT_EQ(scriptPath({"java", "-cp", "x.jar", "org.example.Main"}), std::nullopt);
  EXPECT_EQ(scriptPath({"bash", "-"}), std::nullopt);
  EXPECT_EQ(scriptPath({"bash"}), std::nullopt);
  EXPECT_EQ(scriptPath({}), std::nullopt);
  EXPECT_EQ(scriptPath({"x", "-cp"}), std::nullopt);
}

TEST(AppImageMount, IsTheMountDirectory) {
  EXPECT_EQ(appImageMount("/tmp/.mount_kritaAbC123/usr/bin/krita"), "/tmp/.mount_kritaAbC123");
  for (const auto* path : {"/usr/bin/krita", "/tmp/.mount_", "/tmp/.mount_x", "/tmp/.mount_/x", ""}) {
    EXPECT_EQ(appImageMount(path), std::nullopt) << path;
  }
}

TEST(PrivateDirectories, AreInnermostFirst) {
  EXPECT_THAT(privateDirectories("/usr/lib/firefox-esr/firefox-esr"), ElementsAre("/usr/lib/firefox-esr"));
  EXPECT_THAT(privateDirectories("/opt/google/chrome/chrome"),
              ElementsAre("/opt/google/chrome", "/opt/google"));
  EXPECT_THAT(privateDirectories("/usr/lib/x86_64-linux-gnu/webkit/WebProcess"),
              ElementsAre("/usr/lib/x86_64-linux-gnu/webkit"));
  EXPECT_THAT(privateDirectories("/usr/share/app/lib/main.py"),
              ElementsAre("/usr/share/app/lib", "/usr/share/app"));
}

TEST(PrivateDirectories, AreEmptyInSharedDirectories) {
  for (const auto* path : {"/usr/bin/vim", "/usr/lib/helper", "/usr/libexec/helper", "/home/a/bin/x",
                           "/opt/x", "", "/usr/lib/x86_64-linux-gnu/helper"}) {
    EXPECT_THAT(privateDirectories(path), IsEmpty()) << path;
  }
}

}  // namespace
}  // namespace tarn
