// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>

namespace tarn {

/// Runs tasks one after another, in the order they were given.
class TaskQueue {
 public:
  using Task = std::function<void()>;

  virtual ~TaskQueue() = default;

  /// Hands a task over and returns at once. Any thread.
  virtual void async(Task task) = 0;
};

}  // namespace tarn
