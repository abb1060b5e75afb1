// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Task queues: threads exchange tasks; each piece of state belongs to one thread. Synchronization here:
// TaskInbox is one std::atomic list, its receiver sleeps in std::atomic::wait (a futex on Linux); QtRunLoop
// wakes the main thread by QCoreApplication::postEvent, which locks a mutex inside Qt. Elsewhere: pressure
// sources and signal handler use std::atomic, the process reader of macOS uses std::call_once. Tarn has no
// std::mutex and no std::condition_variable.

#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <new>
#include <thread>

namespace tarn {

/// Runs tasks one after another, in the order of the calls of `async`.
class TaskQueue {
 public:
  using Task = std::function<void()>;

  virtual ~TaskQueue() = default;

  /// Adds a task and returns immediately. Any thread.
  virtual void async(Task task) = 0;

  /// Starts a queue that was made inactive. An inactive queue keeps its tasks. No effect on an active queue.
  /// Owner's thread.
  virtual void activate() {}
};

/// A timer that fires until it is invalidated or destroyed.
class RepeatingTimer {
 public:
  virtual ~RepeatingTimer() = default;

  /// Stops the timer permanently; idempotent.
  virtual void invalidate() = 0;
};

/// The main thread's run loop: a task queue (`async`, from any thread) and timers (main thread).
class RunLoop : public TaskQueue {
 public:
  /// Returns a timer that calls `action` on the main thread every `interval` seconds. The first call is one
  /// interval from now. The timer also fires while a menu or the popover is open.
  virtual std::unique_ptr<RepeatingTimer> repeatingTimer(double interval, std::function<void()> action) = 0;
};

/// Sleeps half a second: the time between two attempts of `post`.
inline void sleepUntilRetry() {
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
}

/// Adds `work` to a queue. When memory runs out it sleeps and tries again, so a result is delivered late
/// instead of never. The main thread must not call it, because the main thread must not sleep. `work` may run
/// twice: an attempt may fail after it added the task. Tests replace `sleep`.
template <typename Work>
void post(TaskQueue& queue, const Work& work, const std::function<void()>& sleep = sleepUntilRetry) {
  for (;;) {
    try {
      queue.async(work);
      return;
    } catch (const std::bad_alloc&) {
      sleep();
    }
  }
}

/// Tasks that any thread adds and one thread, the receiver, runs. Lock-free: senders push onto an atomic list
/// (release), the receiver takes the whole list in one operation (acquire), so a task sees everything that
/// its sender wrote before the push. Tasks that never run are destroyed with the inbox.
class TaskInbox {
 public:
  TaskInbox() = default;
  ~TaskInbox();

  TaskInbox(const TaskInbox&) = delete;
  TaskInbox& operator=(const TaskInbox&) = delete;

  /// Adds a task. Any thread.
  void push(TaskQueue::Task task);

  /// Runs the tasks that are in the inbox, oldest first. Tasks added meanwhile run in the next call.
  /// Receiver's thread.
  void runAll();

  /// Sleeps until the inbox holds a task. Receiver's thread.
  void wait() const;

 private:
  struct Node {
    TaskQueue::Task task;
    Node* next = nullptr;
  };

  /// Empties the list. Returns its tasks oldest first; the caller owns them.
  Node* takeAll();

  std::atomic<Node*> newest_ = nullptr;
};

/// A task queue with its own thread, which sleeps while the queue is empty.
///
/// The destructor runs the tasks that are in the queue, also if the queue is inactive, and joins the thread.
/// So a task must not hold the last reference to the queue's owner.
class SerialQueue final : public TaskQueue {
 public:
  enum class Start {
    active,    ///< runs tasks immediately
    inactive,  ///< keeps tasks, and has no thread, until `activate`
  };

  explicit SerialQueue(Start start = Start::active);
  ~SerialQueue() override;

  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  void async(Task task) override;
  void activate() override;

 private:
  void run();

  TaskInbox inbox_;
  bool stopping_ = false;  ///< queue's thread only
  std::thread thread_;     ///< made by `activate`
};

}  // namespace tarn
