// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>

namespace tarn::test {

/// Runs the event loop until `condition` holds; false when it still does not at the deadline.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds patience = std::chrono::seconds(20)) {
  const QDeadlineTimer deadline(patience);
  QTimer wake;
  wake.start(std::chrono::milliseconds(10));
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return true;
}

}  // namespace tarn::test
