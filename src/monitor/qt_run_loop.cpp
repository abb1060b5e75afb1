// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/qt_run_loop.hpp"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <chrono>
#include <memory>
#include <utility>

namespace tarn {

namespace {

class QtRepeatingTimer final : public RepeatingTimer {
 public:
  QtRepeatingTimer(double interval, std::function<void()> action) {
    // Coarse timers may be 5 % off to save wake-ups. At intervals of 3 seconds and more a precise timer
    // causes no additional wake-ups.
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setInterval(
        std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(interval)));
    timer_.callOnTimeout(std::move(action));
    timer_.start();
  }

  void invalidate() override { timer_.stop(); }

 private:
  QTimer timer_;
};

}  // namespace

void QtRunLoop::async(Task task) {
  // The event is made before the push: TaskInbox then orders its construction before customEvent(), too.
  auto event = std::make_unique<QEvent>(QEvent::User);
  inbox_.push(std::move(task));
  QCoreApplication::postEvent(this, event.release());
}

std::unique_ptr<RepeatingTimer> QtRunLoop::repeatingTimer(double interval, std::function<void()> action) {
  return std::make_unique<QtRepeatingTimer>(interval, std::move(action));
}

void QtRunLoop::customEvent(QEvent* /*event*/) {
  inbox_.runAll();
}

}  // namespace tarn
