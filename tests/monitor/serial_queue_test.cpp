// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/serial_queue.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <latch>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace tarn {
namespace {

TEST(SerialQueue, RunsItsTasksInOrderOnOneThreadOfItsOwn) {
  std::vector<int> ran;
  std::set<std::thread::id> threads;
  {
    SerialQueue queue;
    for (int i = 0; i < 1000; ++i) {
      queue.async([&, i] {
        ran.push_back(i);
        threads.insert(std::this_thread::get_id());
      });
    }
  }
  ASSERT_EQ(ran.size(), 1000U);
  EXPECT_TRUE(std::is_sorted(ran.begin(), ran.end()));
  ASSERT_EQ(threads.size(), 1U);
  EXPECT_NE(*threads.begin(), std::this_thread::get_id());
}

TEST(SerialQueue, DoesNotMakeItsCallersWait) {
  std::latch released(1);
  bool ran = false;
  {
    SerialQueue queue;
    queue.async([&released] { released.wait(); });
    queue.async([&ran] { ran = true; });
    released.count_down();  // reached although the first task cannot have ended
  }
  EXPECT_TRUE(ran);
}

TEST(SerialQueue, TakesTasksFromItsOwnTasks) {
  std::latch done(1);
  SerialQueue queue;
  queue.async([&] { queue.async([&done] { done.count_down(); }); });
  done.wait();
}

TEST(SerialQueue, LetsWhatWasHandedOverEndBeforeItDoes) {
  std::latch started(1);
  std::latch released(1);
  int ran = 0;
  auto queue = std::make_unique<SerialQueue>();
  queue->async([&] {
    started.count_down();
    released.wait();
    ++ran;
  });
  queue->async([&ran] { ++ran; });
  started.wait();
  std::thread releaser([&released] { released.count_down(); });
  queue.reset();
  EXPECT_EQ(ran, 2);
  releaser.join();
}

TEST(SerialQueue, DestroysItsTasksBeforeItEnds) {
  const auto held = std::make_shared<int>();
  {
    SerialQueue queue;
    for (int i = 0; i < 10; ++i) queue.async([held] {});
  }
  EXPECT_EQ(held.use_count(), 1);
}

TEST(SerialQueue, EndsWithoutEverHavingWorked) {
  for (int i = 0; i < 100; ++i) SerialQueue();
}

TEST(SerialQueue, KeepsTheOrderOfEachOfManyCallers) {
  constexpr std::size_t callerCount = 4;
  constexpr int tasksEach = 2000;
  std::vector<std::vector<int>> ran(callerCount);
  {
    SerialQueue queue;
    std::vector<std::thread> callers;
    for (std::size_t caller = 0; caller < callerCount; ++caller) {
      callers.emplace_back([&, caller] {
        for (int i = 0; i < tasksEach; ++i) queue.async([&, caller, i] { ran[caller].push_back(i); });
      });
    }
    for (std::thread& caller : callers) caller.join();
  }
  for (const auto& tasks : ran) {
    EXPECT_EQ(tasks.size(), static_cast<std::size_t>(tasksEach));
    EXPECT_TRUE(std::is_sorted(tasks.begin(), tasks.end()));
  }
}

}  // namespace
}  // namespace tarn
