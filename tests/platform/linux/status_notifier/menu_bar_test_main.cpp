// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include <QApplication>

int main(int argc, char** argv) {
  // Every test brings the bus that it needs; the one of whoever runs them is none of their business.
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  testing::InitGoogleMock(&argc, argv);
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
