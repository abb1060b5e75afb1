// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <memory>
#include <utility>

#include "monitor/memory_pressure.hpp"

namespace tarn {

/// The state of a FakePressureSource. Owned by the test; must outlive the source.
struct FakePressure {
  TaskQueue* queue = nullptr;  ///< the queue passed to resume
  PressureSource::Handler handler;
  int resumed = 0;
  int cancelled = 0;

  /// Delivers one report through the queue.
  void report(PressureFlags flags) {
    queue->async([handler = handler, flags] { handler(flags); });
  }
};

class FakePressureSource final : public PressureSource {
 public:
  explicit FakePressureSource(FakePressure& pressure) : pressure_(pressure) {}
  FakePressureSource(const FakePressureSource&) = delete;
  FakePressureSource& operator=(const FakePressureSource&) = delete;
  ~FakePressureSource() override { ++pressure_.cancelled; }

  void resume(TaskQueue& queue, Handler handler) override {
    ++pressure_.resumed;
    pressure_.queue = &queue;
    pressure_.handler = std::move(handler);
  }

 private:
  FakePressure& pressure_;
};

}  // namespace tarn
