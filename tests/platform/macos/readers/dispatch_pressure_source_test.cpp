// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/readers/dispatch_pressure_source.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "monitor/concurrency.hpp"
#include "monitor/memory_pressure.hpp"
#include "support/stepped_run_loop.hpp"

namespace tarn::macos {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A fake of libdispatch. Its functions are plain function pointers, so only one may exist at a time.
struct FakeDispatch {
  FakeDispatch() { current = this; }
  FakeDispatch(const FakeDispatch&) = delete;
  FakeDispatch& operator=(const FakeDispatch&) = delete;
  ~FakeDispatch() { current = nullptr; }

  bool refusesSources = false;
  unsigned long pending = 0;
  std::vector<std::string> calls;
  void* context = nullptr;
  void (*handler)(void* context) = nullptr;

  /// Delivers an event of the kernel.
  void report(unsigned long levels) {
    pending = levels;
    handler(context);
  }

  static DispatchFunctions functions() {
    return {.createQueue =
                [](const char* label) {
                  current->calls.push_back(std::string("queue ") + label);
                  return static_cast<void*>(&current->queue_);
                },
            .createPressureSource =
                [](unsigned long levels, void* queue) {
                  current->calls.push_back("source " + std::to_string(levels));
                  EXPECT_EQ(queue, &current->queue_);
                  return current->refusesSources ? nullptr : static_cast<void*>(&current->source_);
                },
            .setHandler =
                [](void* /*source*/, void* newContext, void (*newHandler)(void*)) {
                  current->calls.emplace_back("handler");
                  current->context = newContext;
                  current->handler = newHandler;
                },
            .resume = [](void* source) { current->note("resume", source); },
            .pendingLevels = [](void* /*source*/) { return current->pending; },
            .cancel = [](void* source) { current->note("cancel", source); },
            .waitFor = [](void* queue) { current->note("wait for", queue); },
            .release = [](void* object) { current->note("release", object); }};
  }

 private:
  void note(const std::string& call, const void* object) {
    calls.push_back(call + (object == &source_ ? " source" : " queue"));
  }

  inline static FakeDispatch* current = nullptr;
  int queue_ = 0;
  int source_ = 0;
};

/// Runs each task in async().
class ImmediateQueue final : public TaskQueue {
 public:
  void async(Task task) override { task(); }
};

class DispatchPressureTest : public ::testing::Test {
 protected:
  std::unique_ptr<MemoryPressureMonitor> makeMonitor() {
    return std::make_unique<MemoryPressureMonitor>(
        std::make_unique<DispatchPressureSource>(FakeDispatch::functions()),
        std::make_unique<ImmediateQueue>(), mainLoop_,
        [this](MemoryPressure level) { delivered_.push_back(level); });
  }

  FakeDispatch dispatch_;
  SteppedRunLoop mainLoop_;
  std::vector<MemoryPressure> delivered_;
};

TEST_F(DispatchPressureTest, ListensForAllThreeLevelsOnASeparateSerialQueue) {
  const auto monitor = makeMonitor();
  // 7: normal (1), warning (2) and critical (4).
  EXPECT_THAT(dispatch_.calls,
              ElementsAre("queue com.tarn.pressure", "source 7", "handler", "resume source"));
}

TEST_F(DispatchPressureTest, DeliversEventsInOrder) {
  const auto monitor = makeMonitor();
  for (const unsigned long levels : {4UL, 1UL, 2UL, 6UL, 2UL, 2UL, 0UL}) dispatch_.report(levels);
  mainLoop_.tasks.runAll();
  EXPECT_THAT(delivered_,
              ElementsAre(MemoryPressure::critical, MemoryPressure::normal, MemoryPressure::warning,
                          MemoryPressure::critical, MemoryPressure::warning, MemoryPressure::warning,
                          MemoryPressure::normal));
}

TEST_F(DispatchPressureTest, CancelsAndReleasesEverythingWhenDestroyed) {
  auto monitor = makeMonitor();
  dispatch_.calls.clear();
  monitor.reset();
  EXPECT_THAT(dispatch_.calls,
              ElementsAre("cancel source", "wait for queue", "release source", "release queue"));
}

TEST_F(DispatchPressureTest, DropsAnEventThatArrivesAfterTheMonitorIsDestroyed) {
  auto monitor = makeMonitor();
  dispatch_.report(4);
  monitor.reset();
  mainLoop_.tasks.runAll();
  EXPECT_THAT(delivered_, IsEmpty());
}

TEST_F(DispatchPressureTest, ReportsNoEventsWhenTheSourceCannotBeCreated) {
  dispatch_.refusesSources = true;
  auto monitor = makeMonitor();
  monitor.reset();
  EXPECT_THAT(dispatch_.calls, ElementsAre("queue com.tarn.pressure", "source 7", "release queue"));
}

TEST_F(DispatchPressureTest, MakesNoCallWhenNeverResumed) {
  { const DispatchPressureSource neverResumed(FakeDispatch::functions()); }
  EXPECT_THAT(dispatch_.calls, IsEmpty());
}

TEST_F(DispatchPressureTest, CallsTheHandlerOnTheQueueUntilDestroyed) {
  SerialQueue queue;
  std::atomic<int> calls = 0;
  auto source = std::make_unique<DispatchPressureSource>(FakeDispatch::functions());
  source->resume(queue, [&calls, testThread = std::this_thread::get_id()](PressureFlags) {
    EXPECT_NE(std::this_thread::get_id(), testThread);
    ++calls;
  });
  for (int i = 0; i < 100; ++i) dispatch_.report(2);
  source.reset();
  const int callsAtDestruction = calls;
  std::promise<void> queueIsIdle;
  queue.async([&queueIsIdle] { queueIsIdle.set_value(); });
  queueIsIdle.get_future().wait();
  EXPECT_EQ(calls, callsAtDestruction);
}

}  // namespace
}  // namespace tarn::macos
