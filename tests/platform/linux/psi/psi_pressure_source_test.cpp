// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Start and end of the source, with real threads.

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

/// Runs each task on its own thread; the destructor joins them.
class ThreadQueue final : public TaskQueue {
 public:
  ~ThreadQueue() override {
    for (std::thread& thread : threads_) thread.join();
  }
  void async(Task task) override { threads_.emplace_back(std::move(task)); }

 private:
  std::vector<std::thread> threads_;
};

/// Each wait ends immediately with a report, until cancel() is called.
class EndlessTriggers final : public PsiTriggers {
 public:
  bool arm() override { return true; }
  Wake wait(milliseconds /*timeout*/) override {
    const bool cancelled = cancelled_.load();
    return {.cancelled = cancelled, .some = !cancelled};
  }
  void cancel() override { cancelled_ = true; }

 private:
  std::atomic<bool> cancelled_{false};
};

/// A machine with little available memory, so that each report gives the level warning.
class PsiPressureSourceTest : public testing::Test {
 protected:
  PsiPressureSourceTest() { tree_.write("proc/meminfo", "MemTotal: 10000 kB\nMemAvailable: 3000 kB\n"); }

  std::unique_ptr<PsiPressureSource> endlessSource() const {
    return std::make_unique<PsiPressureSource>(tree_.roots(), std::make_unique<EndlessTriggers>(),
                                               std::chrono::steady_clock::now);
  }

  TemporaryTree tree_;
};

TEST_F(PsiPressureSourceTest, CanBeDestroyedBeforeResume) {
  PsiPressureSource source(tree_.roots());
  PsiPressureSource ofRunningSystem(LinuxRoots{});
}

TEST_F(PsiPressureSourceTest, CanBeDestroyedBeforeTheQueueRuns) {
  HeldQueue queue;
  auto handlerData = std::make_shared<int>(1);
  bool called = false;
  auto source = endlessSource();
  source->resume(queue, [&called, handlerData](PressureFlags) { called = true; });
  ASSERT_EQ(queue.tasks.size(), 1U);
  EXPECT_EQ(handlerData.use_count(), 2);
  source.reset();
  EXPECT_EQ(handlerData.use_count(), 1) << "the handler is destroyed immediately";
  queue.tasks.front()();
  EXPECT_FALSE(called);
}

TEST_F(PsiPressureSourceTest, CanBeDestroyedAfterTheQueueDroppedItsTask) {
  HeldQueue queue;
  auto source = endlessSource();
  source->resume(queue, [](PressureFlags) {});
  queue.tasks.clear();
  source.reset();
}

TEST_F(PsiPressureSourceTest, DoesNotCallTheHandlerAfterItsDestructor) {
  for (int round = 0; round < 50; ++round) {
    ThreadQueue queue;
    std::binary_semaphore firstCall{0};
    std::atomic<int> calls{0};
    auto source = endlessSource();
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

TEST_F(PsiPressureSourceTest, CanBeDestroyedWhileItStarts) {
  for (int round = 0; round < 200; ++round) {
    int calls = 0;  // not atomic: the destructor orders the accesses
    ThreadQueue queue;
    auto source = endlessSource();
    source->resume(queue, [&](PressureFlags) { ++calls; });
    source.reset();
    EXPECT_GE(calls, 0);
  }
}

TEST_F(PsiPressureSourceTest, CanBeDestroyedByItsHandler) {
  int calls = 0;
  {
    ThreadQueue queue;
    std::binary_semaphore destroyed{0};
    auto source = endlessSource();
    source->resume(queue, [&](PressureFlags) {
      ++calls;
      source.reset();
      destroyed.release();
    });
    destroyed.acquire();
  }
  EXPECT_EQ(calls, 1);
}

TEST_F(PsiPressureSourceTest, EndsAWaitInTheKernelImmediately) {
  const auto begin = std::chrono::steady_clock::now();
  ThreadQueue queue;
  for (const LinuxRoots& roots : {LinuxRoots{}, tree_.roots()}) {
    PsiPressureSource source(roots);
    source.resume(queue, [](PressureFlags) {});
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(2));
}

TEST(KernelPsiTriggers, WaitTimesOutAndStaysCancelled) {
  const auto triggers = PsiTriggers::ofKernel(LinuxRoots{});
  const PsiTriggers::Wake timeout = triggers->wait(milliseconds(1));
  EXPECT_FALSE(timeout.cancelled || timeout.some || timeout.full || timeout.lost);
  triggers->cancel();
  EXPECT_TRUE(triggers->wait(seconds(60)).cancelled);
  EXPECT_TRUE(triggers->wait(seconds(60)).cancelled);
}

TEST(KernelPsiTriggers, CancelFromAnotherThreadEndsAWait) {
  const auto triggers = PsiTriggers::ofKernel(LinuxRoots{});
  triggers->arm();
  auto wake = std::async(std::launch::async, [&] { return triggers->wait(seconds(60)); });
  triggers->cancel();
  EXPECT_TRUE(wake.get().cancelled);
}

TEST(KernelPsiTriggers, NeverWriteToARegularFile) {
  const TemporaryTree tree;
  const std::string text = "some avg10=0.00 avg60=0.00 avg300=0.00 total=0\n";
  tree.write("proc/pressure/memory", text);
  EXPECT_FALSE(PsiTriggers::ofKernel(tree.roots())->arm());
  std::ostringstream content;
  content << std::ifstream(tree.at("proc/pressure/memory")).rdbuf();
  EXPECT_EQ(content.str(), text);
}

TEST(KernelPsiTriggers, AreRefusedWhenTheKernelRejectsTheWrite) {
  const TemporaryTree tree;
  // This /proc file accepts only numbers.
  tree.link("proc/pressure/memory", "/proc/self/oom_score_adj");
  EXPECT_FALSE(PsiTriggers::ofKernel(tree.roots())->arm());
  // No process can write to these /proc files.
  for (const char* file : {"/proc/version", "/proc/self/mountinfo"}) {
    tree.link("proc/pressure/memory", file);
    EXPECT_FALSE(PsiTriggers::ofKernel(tree.roots())->arm()) << file;
  }
}

TEST(KernelPsiTriggers, AreRefusedForAPipeOrADirectory) {
  const TemporaryTree tree;
  tree.pipe("proc/pressure/memory");
  EXPECT_FALSE(PsiTriggers::ofKernel(tree.roots())->arm());
  tree.remove("proc/pressure/memory");
  tree.write("proc/pressure/memory/file", "");
  EXPECT_FALSE(PsiTriggers::ofKernel(tree.roots())->arm());
}

TEST(KernelPsiTriggers, AreRefusedWithoutThePsiFile) {
  EXPECT_FALSE(PsiTriggers::ofKernel(TemporaryTree().roots())->arm());
}

TEST(ReadPressureLevel, ReturnsALevelOnTheRunningSystem) {
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
