// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/serial_queue.hpp"

#include <utility>

namespace tarn {

SerialQueue::SerialQueue()
    : thread_([this] {
        while (!stopping_) {
          inbox_.wait();
          inbox_.runAll();
        }
      }) {}

SerialQueue::~SerialQueue() {
  inbox_.push([this] { stopping_ = true; });
  thread_.join();
}

void SerialQueue::async(Task task) {
  inbox_.push(std::move(task));
}

}  // namespace tarn
