// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <memory>

#include "monitor/concurrency.hpp"

namespace tarn {

/// The run loop that uses Qt's main event loop. Created and destroyed on the main thread; outlives every
/// sender.
class QtRunLoop final : public QObject, public RunLoop {
 public:
  void async(Task task) override;
  std::unique_ptr<RepeatingTimer> repeatingTimer(double interval, std::function<void()> action) override;

 protected:
  void customEvent(QEvent* event) override;

 private:
  // Tasks are here and not in the events, so that TaskInbox orders the sender's writes before the task:
  // ThreadSanitizer cannot see the mutex inside Qt.
  TaskInbox inbox_;
};

}  // namespace tarn
