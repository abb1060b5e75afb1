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
  /// `tasks` outlives the queue.
  explicit SteppedQueue(SteppedTasks& tasks) : tasks_(tasks) {}
  void async(Task task) override { tasks_.push(std::move(task)); }

 private:
  SteppedTasks& tasks_;
};

/// The tasks of the queues that somebody made, by label. Outlives the queues.
class SteppedQueues {
 public:
  std::unique_ptr<TaskQueue> make(const std::string& label) {
    tasks_.emplace_back(label, std::make_unique<SteppedTasks>());
    return std::make_unique<SteppedQueue>(*tasks_.back().second);
  }

  /// Those of the queue that was made last with the label.
  SteppedTasks& operator[](const std::string& label) {
    return *std::find_if(tasks_.rbegin(), tasks_.rend(), [&](const auto& entry) {
              return entry.first == label;
            })->second;
  }

 private:
  std::vector<std::pair<std::string, std::unique_ptr<SteppedTasks>>> tasks_;
};

}  // namespace tarn
