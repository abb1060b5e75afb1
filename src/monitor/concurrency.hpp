// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <atomic>

#include "monitor/task_queue.hpp"

namespace tarn {

/// Tasks on their way from any thread to one that runs them. Lock-free: senders push onto an atomic list, the
/// receiver takes the whole list at once, so that everything a sender wrote before it pushed is visible to
/// the task. A task that is never taken is destroyed with the inbox, on the thread that destroys it.
class TaskInbox {
 public:
  TaskInbox() = default;
  ~TaskInbox();

  TaskInbox(const TaskInbox&) = delete;
  TaskInbox& operator=(const TaskInbox&) = delete;

  /// Adds a task. Any thread.
  void push(TaskQueue::Task task);

  /// Runs every task that was waiting, oldest first; later ones wait for the next call. Receiver's thread.
  void runAll();

  /// Sleeps until a task is waiting. Receiver's thread.
  void wait() const;

 private:
  struct Node {
    TaskQueue::Task task;
    Node* next = nullptr;
  };

  /// The waiting tasks, oldest first; the caller owns them.
  Node* takeAll();

  std::atomic<Node*> newest_ = nullptr;
};

}  // namespace tarn
