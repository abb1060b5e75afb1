// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <thread>

#include "monitor/concurrency.hpp"
#include "monitor/task_queue.hpp"

namespace tarn {

/// A task queue with a thread of its own, which sleeps while there is nothing to do.
///
/// Destruction lets the running task and those before it in the queue end, then joins the thread: a task must
/// not hold the last reference to the queue's owner when it ends.
class SerialQueue final : public TaskQueue {
 public:
  SerialQueue();
  ~SerialQueue() override;

  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  void async(Task task) override;

 private:
  TaskInbox inbox_;
  bool stopping_ = false;  ///< used on the queue's thread only
  std::thread thread_;
};

}  // namespace tarn
