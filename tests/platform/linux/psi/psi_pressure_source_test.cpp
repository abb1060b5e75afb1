// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// How the source starts and ends, with real threads.

#include "platform/linux/psi/psi_pressure_source.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <deque>
#include <fstream>
#include <future>
#include <memory>
#include <semaphore>
#include <sstream>
#include <thread>
#include <utility>
#include <vector>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Keeps tasks until the test runs them.
class HeldQueue final : public TaskQueue {
 public:
  std::deque<Task> tasks;

  void async(Task task) override { tasks.push_back(std::move(task)); }
};

/// Runs each task on a thread of its own at once; joins them at its end.
class ThreadQueue final : public TaskQueue {
 public:
  ~ThreadQueue() override {
    for (std::thread& thread : threads_) thread.join();
  }
  void async(Task task) override { threads_.emplace_back(std::move(task)); }

 private:
  std::vector<std::thread> threads_;
};

/// Reports without end, as fast as it is asked, until it is cancelled.
class FloodOfEvents final : public PressureEvents {
 public:
  bool arm() override { return true; }
  PressureWake wait(milliseconds /*timeout*/) override {
    const bool cancelled = cancelled_.load();
    return {.cancelled = cancelled, .some = !cancelled};
  }
  void cancel() override { cancelled_ = true; }

 private:
  std::atomic<bool> cancelled_{false};
};

/// A machine with little memory left, so that each report is told.
class PsiPressureSourceTest : public testing::Test {
 protected:
  PsiPressureSourceTest() { tree_.write("proc/meminfo", "MemTotal: 10000 kB\nMemAvailable: 3000 kB\n"); }

  std::unique_ptr<PsiPressureSource> flooded() const {
    return std::make_unique<PsiPressureSource>(tree_.roots(), std::make_unique<FloodOfEvents>(),
                                               std::chrono::steady_clock::now);
  }

  TemporaryTree tree_;
};

TEST_F(PsiPressureSourceTest, CanEndWithoutEverHavingStarted) {
  PsiPressureSource source(tree_.roots());
  PsiPressureSource live(LinuxRoots{});
}

TEST_F(PsiPressureSourceTest, CanEndBeforeTheQueueBegins) {
  HeldQueue queue;
  auto held = std::make_shared<int>(1);
  bool called = false;
  auto source = flooded();
  source->resume(queue, [&called, held](PressureFlags) { called = true; });
  ASSERT_EQ(queue.tasks.size(), 1U);
  EXPECT_EQ(held.use_count(), 2);
  source.reset();
  EXPECT_EQ(held.use_count(), 1) << "what the handler holds is let go at once";
  queue.tasks.front()();
  EXPECT_FALSE(called);
}

TEST_F(PsiPressureSourceTest, CanEndOnAQueueThatNeverBegins) {
  HeldQueue queue;
  auto source = flooded();
  source->resume(queue, [](PressureFlags) {});
  queue.tasks.clear();
  source.reset();
}

TEST_F(PsiPressureSourceTest, CallsNothingOnceItsDestructionReturned) {
  for (int round = 0; round < 50; ++round) {
    ThreadQueue queue;
    std::binary_semaphore firstCall{0};
    std::atomic<int> calls{0};
    auto source = flooded();
    source->resume(queue, [&](PressureFlags flags) {
      EXPECT_EQ(flags, 2U);
      if (++calls == 1) firstCall.release();
    });
    firstCall.acquire();
    source.reset();
    const int before = calls;
    std::this_thread::yield();
    EXPECT_EQ(calls, before);
  }
}

TEST_F(PsiPressureSourceTest, EndsInARaceWithItsBeginning) {
  for (int round = 0; round < 200; ++round) {
    int calls = 0;  // without a lock: the destruction is what makes it safe to read
    ThreadQueue queue;
    auto source = flooded();
    source->resume(queue, [&](PressureFlags) { ++calls; });
    source.reset();
    EXPECT_GE(calls, 0);
  }
}

TEST_F(PsiPressureSourceTest, TheHandlerMayDestroyIt) {
  int calls = 0;
  {
    ThreadQueue queue;
    std::binary_semaphore destroyed{0};
    auto source = flooded();
    source->resume(queue, [&](PressureFlags) {
      ++calls;
      source.reset();
      destroyed.release();
    });
    destroyed.acquire();
  }
  EXPECT_EQ(calls, 1);
}

TEST_F(PsiPressureSourceTest, ARealWaitEndsAtOnceWhenItIsCancelled) {
  const auto begin = std::chrono::steady_clock::now();
  ThreadQueue queue;
  for (const LinuxRoots& roots : {LinuxRoots{}, tree_.roots()}) {
    PsiPressureSource source(roots);
    source.resume(queue, [](PressureFlags) {});
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(2));
}

TEST(KernelPressureEvents, AWaitTimesOutAndIsCancelledForGood) {
  KernelPressureEvents events(LinuxRoots{});
  const PressureWake quiet = events.wait(milliseconds(1));
  EXPECT_FALSE(quiet.cancelled || quiet.some || quiet.full || quiet.lost);
  events.cancel();
  EXPECT_TRUE(events.wait(seconds(60)).cancelled);
  EXPECT_TRUE(events.wait(seconds(60)).cancelled);
}

TEST(KernelPressureEvents, ACancelFromAnotherThreadEndsAWait) {
  KernelPressureEvents events(LinuxRoots{});
  events.arm();
  auto wake = std::async(std::launch::async, [&] { return events.wait(seconds(60)); });
  events.cancel();
  EXPECT_TRUE(wake.get().cancelled);
}

TEST(KernelPressureEvents, ACapturedTreeIsNeverWrittenTo) {
  const TemporaryTree tree;
  const std::string text = "some avg10=0.00 avg60=0.00 avg300=0.00 total=0\n";
  tree.write("proc/pressure/memory", text);
  EXPECT_FALSE(KernelPressureEvents(tree.roots()).arm());
  std::ostringstream content;
  content << std::ifstream(tree.at("proc/pressure/memory")).rdbuf();
  EXPECT_EQ(content.str(), text);
}

TEST(KernelPressureEvents, AKernelThatDoesNotTakeTheTriggersRefuses) {
  const TemporaryTree tree;
  // A file of the kernel that takes numbers, and nothing else.
  tree.link("proc/pressure/memory", "/proc/self/oom_score_adj");
  EXPECT_FALSE(KernelPressureEvents(tree.roots()).arm());
  // Files that cannot be written to, whoever asks.
  for (const char* file : {"/proc/version", "/proc/self/mountinfo"}) {
    tree.link("proc/pressure/memory", file);
    EXPECT_FALSE(KernelPressureEvents(tree.roots()).arm()) << file;
  }
}

TEST(KernelPressureEvents, APipeOrADirectoryInTheirPlaceRefuses) {
  const TemporaryTree tree;
  tree.pipe("proc/pressure/memory");
  EXPECT_FALSE(KernelPressureEvents(tree.roots()).arm());
  tree.remove("proc/pressure/memory");
  tree.write("proc/pressure/memory/file", "");
  EXPECT_FALSE(KernelPressureEvents(tree.roots()).arm());
}

TEST(KernelPressureEvents, AKernelWithoutThemRefuses) {
  EXPECT_FALSE(KernelPressureEvents(TemporaryTree().roots()).arm());
}

TEST(ReadPressureLevel, IsTheLevelOfTheRunningSystem) {
  const auto level = readPressureLevel(LinuxRoots{});
  ASSERT_TRUE(level);
  EXPECT_TRUE(memoryPressureFromRawValue(*level)) << *level;
}

TEST(PsiPressureSource, StartsAndEndsOnTheRunningSystem) {
  ThreadQueue queue;
  const auto source = std::make_unique<PsiPressureSource>(LinuxRoots{});
  source->resume(queue, [](PressureFlags) {});
}

}  // namespace
}  // namespace tarn
