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

SerialQueue::SerialQueue(Start start) {
  if (start == Start::active) activate();
}

SerialQueue::~SerialQueue() {
  activate();
  inbox_.push([this] { stopping_ = true; });
  thread_.join();
}

void SerialQueue::async(Task task) {
  inbox_.push(std::move(task));
}

void SerialQueue::activate() {
  if (!thread_.joinable()) thread_ = std::thread(&SerialQueue::run, this);
}

void SerialQueue::run() {
  while (!stopping_) {
    inbox_.wait();
    inbox_.runAll();
  }
}

}  // namespace tarn
