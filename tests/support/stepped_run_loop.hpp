// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "monitor/concurrency.hpp"

namespace tarn {

/// Queued tasks that run only when the test calls runOne or runAll, on the calling thread.
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

  /// Also runs tasks that are added while it runs.
  void runAll() {
    while (!tasks_.empty()) runOne();
  }

 private:
  std::deque<TaskQueue::Task> tasks_;
};

/// A serial queue whose tasks run when the test calls SteppedTasks::runOne or runAll.
class SteppedQueue final : public TaskQueue {
 public:
  /// `tasks` must exist whenever `async` is called.
  explicit SteppedQueue(std::weak_ptr<SteppedTasks> tasks) : tasks_(std::move(tasks)) {}
  void async(Task task) override { tasks_.lock()->push(std::move(task)); }
  void activate() override {
    // A task that never ran may own this queue's owner, whose destructor calls activate() while the tasks are
    // destroyed.
    if (const auto tasks = tasks_.lock()) tasks->activated = true;
  }

 private:
  std::weak_ptr<SteppedTasks> tasks_;
};

/// Creates queues and keeps their tasks by label.
class SteppedQueues {
 public:
  std::unique_ptr<TaskQueue> make(const std::string& label) {
    tasks_.emplace_back(label, std::make_shared<SteppedTasks>());
    return std::make_unique<SteppedQueue>(tasks_.back().second);
  }

  /// The tasks of the most recently created queue with this label.
  SteppedTasks& operator[](const std::string& label) {
    return *std::find_if(tasks_.rbegin(), tasks_.rend(), [&](const auto& entry) {
              return entry.first == label;
            })->second;
  }

 private:
  std::vector<std::pair<std::string, std::shared_ptr<SteppedTasks>>> tasks_;
};

/// A timer of a SteppedRunLoop. It exists also after it was invalidated.
struct SteppedTimer {
  double interval = 0;  ///< seconds
  double nextFire = 0;  ///< seconds on the clock of the run loop
  std::function<void()> action;
  bool valid = true;
};

/// A run loop. The test advances its clock and runs its tasks.
class SteppedRunLoop final : public RunLoop {
 public:
  SteppedTasks tasks;
  std::vector<std::shared_ptr<SteppedTimer>> timers;  ///< in order of creation

  void async(Task task) override { tasks.push(std::move(task)); }

  std::unique_ptr<RepeatingTimer> repeatingTimer(double interval, std::function<void()> action) override {
    timers.push_back(
        std::make_shared<SteppedTimer>(SteppedTimer{interval, now_ + interval, std::move(action)}));
    return std::make_unique<Handle>(timers.back());
  }

  /// Advances the clock and calls the actions of due timers in order of time. Does not run tasks that they
  /// post.
  void advance(double seconds) {
    const double end = now_ + seconds;
    for (auto next = nextTimer(); next && next->nextFire <= end; next = nextTimer()) {
      now_ = next->nextFire;
      next->nextFire += next->interval;
      next->action();
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
