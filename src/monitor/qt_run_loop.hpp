// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <memory>

#include "monitor/run_loop.hpp"
#include "monitor/concurrency.hpp"

namespace tarn {

/// The run loop over Qt's main event loop. Created and destroyed on the main thread, where it outlives
/// everyone who hands it tasks.
class QtRunLoop final : public QObject, public RunLoop {
 public:
  void async(Task task) override;
  std::unique_ptr<RepeatingTimer> repeatingTimer(double interval, std::function<void()> block) override;

 protected:
  void customEvent(QEvent* event) override;

 private:
  // Tasks travel here and not inside the events: the hand-over is then ordered by our own atomic.
  TaskInbox inbox_;
};

}  // namespace tarn
