// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/concurrency.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <latch>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tarn {
namespace {

using testing::ElementsAre;

TEST(TaskInbox, RunsTasksOldestFirst) {
  TaskInbox inbox;
  std::vector<int> ran;
  for (int i = 0; i < 5; ++i) inbox.push([&ran, i] { ran.push_back(i); });
  EXPECT_TRUE(ran.empty());
  inbox.runAll();
  EXPECT_THAT(ran, ElementsAre(0, 1, 2, 3, 4));
  inbox.runAll();
  EXPECT_EQ(ran.size(), 5U);
}

TEST(TaskInbox, LeavesTasksAddedMeanwhileForTheNextCall) {
  TaskInbox inbox;
  int ran = 0;
  inbox.push([&] { inbox.push([&ran] { ++ran; }); });
  inbox.runAll();
  EXPECT_EQ(ran, 0);
  inbox.runAll();
  EXPECT_EQ(ran, 1);
}

TEST(TaskInbox, DestroysATaskAfterItRan) {
  TaskInbox inbox;
  auto held = std::make_shared<int>();
  const std::weak_ptr<int> watched = held;
  inbox.push([held = std::move(held)] {});
  inbox.push([&watched] { EXPECT_TRUE(watched.expired()); });
  EXPECT_FALSE(watched.expired());
  inbox.runAll();
}

TEST(TaskInbox, DestroysTasksThatNeverRan) {
  const auto held = std::make_shared<int>();
  {
    TaskInbox inbox;
    for (int i = 0; i < 3; ++i) inbox.push([held] { FAIL(); });
    EXPECT_EQ(held.use_count(), 4);
  }
  EXPECT_EQ(held.use_count(), 1);
}

TEST(TaskInbox, MakesTheWritesOfManySendersVisibleInTheirOrder) {
  constexpr std::size_t senderCount = 4;
  constexpr std::size_t tasksEach = 5000;
  TaskInbox inbox;
  // Not atomic: only the inbox makes the senders' writes visible to the receiver.
  std::vector<std::vector<std::size_t>> written(senderCount, std::vector<std::size_t>(tasksEach));
  std::vector<std::size_t> received(senderCount);
  std::size_t total = 0;

  std::vector<std::thread> senders;
  for (std::size_t sender = 0; sender < senderCount; ++sender) {
    senders.emplace_back([&, sender] {
      for (std::size_t i = 0; i < tasksEach; ++i) {
        written[sender][i] = i + 1;
        inbox.push([&, sender, i] {
          EXPECT_EQ(received[sender], i) << "tasks of a sender run in another order";
          EXPECT_EQ(written[sender][i], i + 1) << "the sender's write is not visible";
          ++received[sender];
          ++total;
        });
      }
    });
  }
  while (total < senderCount * tasksEach) {
    inbox.wait();
    inbox.runAll();
  }
  for (std::thread& sender : senders) sender.join();
  EXPECT_THAT(received, testing::Each(tasksEach));
}

TEST(TaskInbox, WakesASleepingReceiver) {
  TaskInbox requests;
  TaskInbox replies;
  constexpr int rounds = 2000;
  int received = 0;
  std::thread receiver([&] {
    while (received < rounds) {
      requests.wait();
      requests.runAll();
    }
  });
  int answered = 0;
  for (int round = 0; round < rounds; ++round) {
    requests.push([&] {
      ++received;
      replies.push([&answered] { ++answered; });
    });
    replies.wait();
    replies.runAll();
  }
  receiver.join();
  EXPECT_EQ(received, rounds);
  EXPECT_EQ(answered, rounds);
}

TEST(SerialQueue, RunsTasksInOrderOnItsOwnThread) {
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

TEST(SerialQueue, DoesNotBlockCallersOfAsync) {
  std::latch released(1);
  bool ran = false;
  {
    SerialQueue queue;
    queue.async([&released] { released.wait(); });
    queue.async([&ran] { ran = true; });
    released.count_down();  // async() returned although the first task blocks
  }
  EXPECT_TRUE(ran);
}

TEST(SerialQueue, AcceptsTasksFromItsOwnTasks) {
  std::latch done(1);
  SerialQueue queue;
  queue.async([&] { queue.async([&done] { done.count_down(); }); });
  done.wait();
}

TEST(SerialQueue, RunsQueuedTasksBeforeItsDestructorReturns) {
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

TEST(SerialQueue, DestroysItsTasksBeforeItsDestructorReturns) {
  const auto held = std::make_shared<int>();
  {
    SerialQueue queue;
    for (int i = 0; i < 10; ++i) queue.async([held] {});
  }
  EXPECT_EQ(held.use_count(), 1);
}

TEST(SerialQueue, CanBeDestroyedWithoutTasks) {
  for (int i = 0; i < 100; ++i) SerialQueue();
}

TEST(SerialQueue, KeepsTheOrderOfEachCaller) {
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

TEST(InactiveSerialQueue, RunsNoTaskBeforeItIsActivated) {
  std::vector<std::string> events;
  std::latch done(1);
  SerialQueue queue(SerialQueue::Start::inactive);
  queue.async([&events] { events.emplace_back("first"); });
  queue.async([&events] { events.emplace_back("second"); });
  events.emplace_back("activate");  // ThreadSanitizer reports a task that runs before this line
  queue.activate();
  queue.async([&] {
    events.emplace_back("third");
    done.count_down();
  });
  done.wait();
  EXPECT_THAT(events, ElementsAre("activate", "first", "second", "third"));
}

TEST(InactiveSerialQueue, IsActivatedOnce) {
  std::set<std::thread::id> threads;
  {
    SerialQueue queue(SerialQueue::Start::inactive);
    for (int i = 0; i < 3; ++i) {
      queue.activate();
      queue.async([&threads] { threads.insert(std::this_thread::get_id()); });
    }
  }
  EXPECT_EQ(threads.size(), 1U);
}

TEST(InactiveSerialQueue, RunsItsTasksWhenItIsDestroyed) {
  std::thread::id ranOn;
  {
    SerialQueue queue(SerialQueue::Start::inactive);
    queue.async([&ranOn] { ranOn = std::this_thread::get_id(); });
  }
  EXPECT_NE(ranOn, std::thread::id());
  EXPECT_NE(ranOn, std::this_thread::get_id());
}

TEST(InactiveSerialQueue, CanBeDestroyedWithoutTasks) {
  const SerialQueue queue(SerialQueue::Start::inactive);
}

/// Throws std::bad_alloc for the first two tasks.
class FailingQueue final : public TaskQueue {
 public:
  void async(Task task) override {
    if (++calls_ <= 2) throw std::bad_alloc();
    task();
  }

 private:
  int calls_ = 0;
};

TEST(Post, SleepsAndRetriesUntilThereIsMemory) {
  FailingQueue queue;
  std::vector<std::string> events;
  post(
      queue, [&events] { events.emplace_back("run"); }, [&events] { events.emplace_back("sleep"); });
  EXPECT_THAT(events, ElementsAre("sleep", "sleep", "run"));
}

}  // namespace
}  // namespace tarn
