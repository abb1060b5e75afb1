// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/host_kind.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFileInfo>

namespace tarn {
namespace {

TEST(HostKind, OnlyPanelsThatKeepProportionsGetWidePictures) {
  EXPECT_EQ(hostKind(QStringLiteral("waybar")), HostKind::widePictures);
  EXPECT_EQ(hostKind(QStringLiteral("mate-panel")), HostKind::widePictures);
  EXPECT_EQ(hostKind(QStringLiteral("xfce4-panel")), HostKind::plain);
  EXPECT_EQ(hostKind(QStringLiteral("plasmashell")), HostKind::plain);
  EXPECT_EQ(hostKind(QStringLiteral("lxqt-panel")), HostKind::plain);
}

TEST(HostKind, OnlyTheShellWithItsExtensionGetsALabelProperty) {
  EXPECT_EQ(hostKind(QStringLiteral("gnome-shell")), HostKind::ayatanaLabel);
}

TEST(HostKind, AnUnknownProgramIsTakenForAPlainOne) {
  EXPECT_EQ(hostKind(QString()), HostKind::plain);
  EXPECT_EQ(hostKind(QStringLiteral("waybar2")), HostKind::plain);
}

TEST(RunningProgramName, IsTheNameOfTheExecutable) {
  const QString own = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
  EXPECT_EQ(runningProgramName(static_cast<unsigned>(getpid())), own);
}

TEST(RunningProgramName, IsBlankWithoutAProcess) {
  EXPECT_EQ(runningProgramName(0), QString());
  EXPECT_EQ(runningProgramName(4294967295U), QString());
}

}  // namespace
}  // namespace tarn
