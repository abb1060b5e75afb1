// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/concurrency.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <thread>
#include <vector>

namespace tarn {
namespace {

using testing::ElementsAre;

TEST(TaskInbox, RunsWhatWaitsOldestFirst) {
  TaskInbox inbox;
  std::vector<int> ran;
  for (int i = 0; i < 5; ++i) inbox.push([&ran, i] { ran.push_back(i); });
  EXPECT_TRUE(ran.empty());
  inbox.runAll();
  EXPECT_THAT(ran, ElementsAre(0, 1, 2, 3, 4));
  inbox.runAll();
  EXPECT_EQ(ran.size(), 5U);
}

TEST(TaskInbox, LeavesWhatATaskAddsForTheNextTime) {
  TaskInbox inbox;
  int ran = 0;
  inbox.push([&] { inbox.push([&ran] { ++ran; }); });
  inbox.runAll();
  EXPECT_EQ(ran, 0);
  inbox.runAll();
  EXPECT_EQ(ran, 1);
}

TEST(TaskInbox, DestroysATaskAsSoonAsItRan) {
  TaskInbox inbox;
  auto held = std::make_shared<int>();
  const std::weak_ptr<int> watched = held;
  inbox.push([held = std::move(held)] {});
  inbox.push([&watched] { EXPECT_TRUE(watched.expired()); });
  EXPECT_FALSE(watched.expired());
  inbox.runAll();
}

TEST(TaskInbox, DestroysWithItselfWhatNeverRan) {
  const auto held = std::make_shared<int>();
  {
    TaskInbox inbox;
    for (int i = 0; i < 3; ++i) inbox.push([held] { FAIL(); });
    EXPECT_EQ(held.use_count(), 4);
  }
  EXPECT_EQ(held.use_count(), 1);
}

TEST(TaskInbox, HandsOverWhatEachOfManySendersWroteInTheirOrder) {
  constexpr std::size_t senderCount = 4;
  constexpr std::size_t tasksEach = 5000;
  TaskInbox inbox;
  // Plain memory: the hand-over alone makes the senders' writes visible to the receiver.
  std::vector<std::vector<std::size_t>> written(senderCount, std::vector<std::size_t>(tasksEach));
  std::vector<std::size_t> received(senderCount);
  std::size_t total = 0;

  std::vector<std::thread> senders;
  for (std::size_t sender = 0; sender < senderCount; ++sender) {
    senders.emplace_back([&, sender] {
      for (std::size_t i = 0; i < tasksEach; ++i) {
        written[sender][i] = i + 1;
        inbox.push([&, sender, i] {
          EXPECT_EQ(received[sender], i) << "out of order";
          EXPECT_EQ(written[sender][i], i + 1) << "not visible";
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

TEST(TaskInbox, WakesAReceiverThatSleeps) {
  TaskInbox there;
  TaskInbox back;
  constexpr int rounds = 2000;
  int received = 0;
  std::thread receiver([&] {
    while (received < rounds) {
      there.wait();
      there.runAll();
    }
  });
  int answered = 0;
  for (int round = 0; round < rounds; ++round) {
    there.push([&] {
      ++received;
      back.push([&answered] { ++answered; });
    });
    back.wait();
    back.runAll();
  }
  receiver.join();
  EXPECT_EQ(received, rounds);
  EXPECT_EQ(answered, rounds);
}

}  // namespace
}  // namespace tarn
