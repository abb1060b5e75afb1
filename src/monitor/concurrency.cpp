// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/concurrency.hpp"

#include <memory>
#include <utility>

namespace tarn {

TaskInbox::~TaskInbox() {
  Node* node = takeAll();
  while (node != nullptr) {
    const std::unique_ptr<Node> owned(node);
    node = owned->next;
  }
}

void TaskInbox::push(TaskQueue::Task task) {
  Node* node = new Node{std::move(task), newest_.load(std::memory_order_relaxed)};
  while (!newest_.compare_exchange_weak(node->next, node, std::memory_order_release,
                                        std::memory_order_relaxed)) {
  }
  newest_.notify_one();
}

void TaskInbox::runAll() {
  Node* node = takeAll();
  while (node != nullptr) {
    const std::unique_ptr<Node> owned(node);
    node = owned->next;
    owned->task();
  }
}

void TaskInbox::wait() const {
  newest_.wait(nullptr, std::memory_order_acquire);
}

TaskInbox::Node* TaskInbox::takeAll() {
  Node* newestFirst = newest_.exchange(nullptr, std::memory_order_acquire);
  Node* oldestFirst = nullptr;
  while (newestFirst != nullptr) {
    Node* next = std::exchange(newestFirst->next, oldestFirst);
    oldestFirst = std::exchange(newestFirst, next);
  }
  return oldestFirst;
}

}  // namespace tarn
