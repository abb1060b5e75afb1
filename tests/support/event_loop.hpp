// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>

namespace tarn::test {

/// Processes events until `condition` returns true. Returns false on timeout.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds timeout = std::chrono::seconds(20)) {
  const QDeadlineTimer deadline(timeout);
  QTimer wake;
  wake.start(std::chrono::milliseconds(10));
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return true;
}

}  // namespace tarn::test
