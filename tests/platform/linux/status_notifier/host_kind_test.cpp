// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFileInfo>

#include "platform/linux/status_notifier/watcher_registration.hpp"

namespace tarn {
namespace {

TEST(HostKind, OnlyPanelsThatKeepProportionsGetWideIcons) {
  EXPECT_EQ(hostKind(QStringLiteral("waybar")), HostKind::wideIcons);
  EXPECT_EQ(hostKind(QStringLiteral("mate-panel")), HostKind::wideIcons);
  EXPECT_EQ(hostKind(QStringLiteral("xfce4-panel")), HostKind::plain);
  EXPECT_EQ(hostKind(QStringLiteral("plasmashell")), HostKind::plain);
  EXPECT_EQ(hostKind(QStringLiteral("lxqt-panel")), HostKind::plain);
}

TEST(HostKind, OnlyGnomeShellGetsTheLabelProperty) {
  EXPECT_EQ(hostKind(QStringLiteral("gnome-shell")), HostKind::ayatanaLabel);
}

TEST(HostKind, UnknownProgramsArePlain) {
  EXPECT_EQ(hostKind(QString()), HostKind::plain);
  EXPECT_EQ(hostKind(QStringLiteral("waybar2")), HostKind::plain);
}

TEST(RunningProgramName, IsTheFileNameOfTheExecutable) {
  const QString ownName = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
  EXPECT_EQ(runningProgramName(static_cast<unsigned>(getpid())), ownName);
}

TEST(RunningProgramName, IsEmptyWithoutAProcess) {
  EXPECT_EQ(runningProgramName(0), QString());
  EXPECT_EQ(runningProgramName(4294967295U), QString());
}

}  // namespace
}  // namespace tarn
