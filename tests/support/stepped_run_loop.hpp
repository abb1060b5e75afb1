// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "monitor/concurrency.hpp"

namespace tarn {

/// Tasks that run when, and only when, the test says so: on its own thread, one at a time.
class SteppedTasks {
 public:
  bool activated = false;  ///< whether the queue's `activate` was called; tasks run in any case

  void push(TaskQueue::Task task) { tasks_.push_back(std::move(task)); }
  std::size_t waiting() const { return tasks_.size(); }

  void runOne() {
    const TaskQueue::Task task = std::move(tasks_.at(0));
    tasks_.pop_front();
    task();
  }

  /// Also those that the tasks add.
  void runAll() {
    while (!tasks_.empty()) runOne();
  }

 private:
  std::deque<TaskQueue::Task> tasks_;
};

/// A timer that was scheduled, whether it still is or not.
struct SteppedTimer {
  double interval = 0;  ///< seconds
  double nextFire = 0;  ///< seconds, on the loop's clock
  std::function<void()> block;
  bool valid = true;
};

/// A run loop whose tasks and time the test steps.
class SteppedRunLoop final : public RunLoop {
 public:
  SteppedTasks tasks;
  std::vector<std::shared_ptr<SteppedTimer>> timers;  ///< in the order of their scheduling

  void async(Task task) override { tasks.push(std::move(task)); }

  std::unique_ptr<RepeatingTimer> repeatingTimer(double interval, std::function<void()> block) override {
    timers.push_back(
        std::make_shared<SteppedTimer>(SteppedTimer{interval, now_ + interval, std::move(block)}));
    return std::make_unique<Handle>(timers.back());
  }

  /// Lets time pass: what comes due fires in its order, without running the tasks that it submits.
  void advance(double seconds) {
    const double end = now_ + seconds;
    for (auto next = nextTimer(); next && next->nextFire <= end; next = nextTimer()) {
      now_ = next->nextFire;
      next->nextFire += next->interval;
      next->block();
    }
    now_ = end;
  }

  std::ptrdiff_t validTimers() const {
    return std::count_if(timers.begin(), timers.end(), [](const auto& timer) { return timer->valid; });
  }

 private:
  class Handle final : public RepeatingTimer {
   public:
    explicit Handle(std::shared_ptr<SteppedTimer> timer) : timer_(std::move(timer)) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() override { timer_->valid = false; }
    void invalidate() override { timer_->valid = false; }

   private:
    std::shared_ptr<SteppedTimer> timer_;
  };

  std::shared_ptr<SteppedTimer> nextTimer() const {
    std::shared_ptr<SteppedTimer> next;
    for (const auto& timer : timers) {
      if (timer->valid && (!next || timer->nextFire < next->nextFire)) next = timer;
    }
    return next;
  }

  double now_ = 0;
};

}  // namespace tarn
