// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include <QApplication>

/// Runs all tests of a program whose tests draw or make widgets, without a display unless one is asked for. Tests
/// that need a session bus start one of their own.
int main(int argc, char** argv) {
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
