// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include <QApplication>

/// main() of test programs that need a QApplication. Uses the offscreen platform unless QT_QPA_PLATFORM is
/// set. There is no session bus; tests that need one start their own.
int main(int argc, char** argv) {
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
