// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/qt_run_loop.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <memory>
#include <thread>
#include <vector>

namespace tarn {
namespace {

using testing::ElementsAre;

/// Processes events until the condition holds. ctest's timeout ends a test that waits forever.
template <typename Condition>
void processEventsUntil(Condition condition) {
  while (!condition()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

TEST(QtRunLoop, RunsTasksInOrderAfterAsyncReturns) {
  QtRunLoop loop;
  std::vector<int> ran;
  for (int i = 0; i < 3; ++i) loop.async([&ran, i] { ran.push_back(i); });
  EXPECT_TRUE(ran.empty());
  processEventsUntil([&ran] { return ran.size() == 3; });
  EXPECT_THAT(ran, ElementsAre(0, 1, 2));
}

TEST(QtRunLoop, RunsTasksThatATaskAdds) {
  QtRunLoop loop;
  bool ran = false;
  loop.async([&] { loop.async([&ran] { ran = true; }); });
  processEventsUntil([&ran] { return ran; });
}

TEST(QtRunLoop, RunsTasksOfOtherThreadsOnTheMainThreadInOrder) {
  constexpr std::size_t senderCount = 4;
  constexpr std::size_t tasksEach = 2000;
  const auto mainThread = std::this_thread::get_id();
  QtRunLoop loop;
  // Not atomic: only the run loop makes the senders' writes visible to the main thread.
  std::vector<std::vector<std::size_t>> written(senderCount, std::vector<std::size_t>(tasksEach));
  std::vector<std::size_t> received(senderCount);
  std::size_t total = 0;
  std::vector<std::thread> senders;
  for (std::size_t sender = 0; sender < senderCount; ++sender) {
    senders.emplace_back([&, sender] {
      for (std::size_t i = 0; i < tasksEach; ++i) {
        written[sender][i] = i + 1;
        loop.async([&, sender, i] {
          EXPECT_EQ(std::this_thread::get_id(), mainThread);
          EXPECT_EQ(received[sender]++, i);
          EXPECT_EQ(written[sender][i], i + 1);
          ++total;
        });
      }
    });
  }
  processEventsUntil([&total] { return total == senderCount * tasksEach; });
  for (std::thread& sender : senders) sender.join();
  EXPECT_THAT(received, testing::Each(tasksEach));
}

TEST(QtRunLoop, DestroysTasksThatNeverRan) {
  const auto held = std::make_shared<int>();
  {
    QtRunLoop loop;
    loop.async([held] { FAIL(); });
    EXPECT_EQ(held.use_count(), 2);
  }
  EXPECT_EQ(held.use_count(), 1);
  QCoreApplication::processEvents();
}

TEST(QtRunLoop, PassesOtherEventsToQt) {
  auto* loop = new QtRunLoop;
  bool destroyed = false;
  QObject::connect(loop, &QObject::destroyed, [&destroyed] { destroyed = true; });
  loop->deleteLater();
  QCoreApplication::sendPostedEvents(loop, QEvent::DeferredDelete);
  EXPECT_TRUE(destroyed);
}

// These tests use real time, to check that the QTimer has the interval. They wait for events, not for a
// delay.
constexpr double interval = 0.03;  // seconds

TEST(QtRunLoopTimer, FiresAfterEachInterval) {
  QtRunLoop loop;
  const auto mainThread = std::this_thread::get_id();
  QElapsedTimer clock;
  clock.start();
  std::vector<qint64> fired;
  const auto timer = loop.repeatingTimer(interval, [&] {
    EXPECT_EQ(std::this_thread::get_id(), mainThread);
    fired.push_back(clock.elapsed());
  });
  processEventsUntil([&fired] { return fired.size() == 4; });
  for (std::size_t i = 0; i < fired.size(); ++i) {
    // Milliseconds. Both values may be rounded.
    EXPECT_GE(fired[i], static_cast<qint64>(i + 1) * 30 - 2) << "too early";
  }
}

/// Processes events until another timer with the same interval, started later, fired five times.
void waitFiveIntervals(QtRunLoop& loop) {
  int fired = 0;
  const auto timer = loop.repeatingTimer(interval, [&fired] { ++fired; });
  processEventsUntil([&fired] { return fired == 5; });
}

TEST(QtRunLoopTimer, DoesNotFireAfterItIsInvalidated) {
  QtRunLoop loop;
  int fired = 0;
  const auto timer = loop.repeatingTimer(interval, [&fired] { ++fired; });
  processEventsUntil([&fired] { return fired == 2; });
  timer->invalidate();
  timer->invalidate();
  waitFiveIntervals(loop);
  EXPECT_EQ(fired, 2);
}

TEST(QtRunLoopTimer, DoesNotFireAfterItIsDestroyed) {
  QtRunLoop loop;
  const auto held = std::make_shared<int>();
  auto timer = loop.repeatingTimer(interval, [held] { FAIL(); });
  timer.reset();
  EXPECT_EQ(held.use_count(), 1);
  waitFiveIntervals(loop);
}

TEST(QtRunLoopTimer, CanBeInvalidatedByItsAction) {
  QtRunLoop loop;
  int fired = 0;
  std::unique_ptr<RepeatingTimer> timer = loop.repeatingTimer(interval, [&] {
    ++fired;
    timer->invalidate();
  });
  waitFiveIntervals(loop);
  EXPECT_EQ(fired, 1);
}

}  // namespace
}  // namespace tarn
