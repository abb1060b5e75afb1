// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/stepped_run_loop.hpp"

namespace tarn {

/// A serial queue that the test steps.
class SteppedQueue final : public TaskQueue {
 public:
  /// `tasks` outlives the last call of `async`.
  explicit SteppedQueue(std::weak_ptr<SteppedTasks> tasks) : tasks_(std::move(tasks)) {}
  void async(Task task) override { tasks_.lock()->push(std::move(task)); }
  void activate() override {
    // A task that never ran may hold the queue's owner, which activates its queue when it is destroyed.
    if (const auto tasks = tasks_.lock()) tasks->activated = true;
  }

 private:
  std::weak_ptr<SteppedTasks> tasks_;
};

/// The tasks of the queues that were made, by label.
class SteppedQueues {
 public:
  std::unique_ptr<TaskQueue> make(const std::string& label) {
    tasks_.emplace_back(label, std::make_shared<SteppedTasks>());
    return std::make_unique<SteppedQueue>(tasks_.back().second);
  }

  /// The tasks of the queue that was made last with the label.
  SteppedTasks& operator[](const std::string& label) {
    return *std::find_if(tasks_.rbegin(), tasks_.rend(), [&](const auto& entry) {
              return entry.first == label;
            })->second;
  }

 private:
  std::vector<std::pair<std::string, std::shared_ptr<SteppedTasks>>> tasks_;
};

}  // namespace tarn
