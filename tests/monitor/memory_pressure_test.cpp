// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/memory_pressure.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "support/fake_pressure_source.hpp"
#include "support/stepped_run_loop.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr PressureFlags normalFlag = 1;
constexpr PressureFlags warningFlag = 2;
constexpr PressureFlags criticalFlag = 4;

TEST(PressureFlags, ReturnTheHighestLevel) {
  EXPECT_EQ(memoryPressureFromFlags(normalFlag), MemoryPressure::normal);
  EXPECT_EQ(memoryPressureFromFlags(warningFlag), MemoryPressure::warning);
  EXPECT_EQ(memoryPressureFromFlags(criticalFlag), MemoryPressure::critical);
  EXPECT_EQ(memoryPressureFromFlags(warningFlag | criticalFlag), MemoryPressure::critical);
  EXPECT_EQ(memoryPressureFromFlags(normalFlag | warningFlag), MemoryPressure::warning);
  EXPECT_EQ(memoryPressureFromFlags(normalFlag | warningFlag | criticalFlag), MemoryPressure::critical);
}

TEST(PressureFlags, ReturnNormalWithoutAKnownLevel) {
  EXPECT_EQ(memoryPressureFromFlags(0), MemoryPressure::normal);
  EXPECT_EQ(memoryPressureFromFlags(8 | 16 | 0x80000000U), MemoryPressure::normal);
  EXPECT_EQ(memoryPressureFromFlags(8 | warningFlag), MemoryPressure::warning);
}

class PressureMonitor : public ::testing::Test {
 protected:
  void SetUp() override {
    monitor_.emplace(std::make_unique<FakePressureSource>(pressure_), queues_.make("pressure"), mainLoop_,
                     [this](MemoryPressure level) { delivered_.push_back(level); });
  }

  SteppedTasks& queue() { return queues_["pressure"]; }

  SteppedRunLoop mainLoop_;
  SteppedQueues queues_;
  FakePressure pressure_;
  std::vector<MemoryPressure> delivered_;
  std::optional<MemoryPressureMonitor> monitor_;
};

TEST_F(PressureMonitor, ResumesItsSourceAtConstructionAndReportsNoLevel) {
  EXPECT_EQ(pressure_.resumed, 1);
  EXPECT_EQ(queue().waiting(), 0U);
  EXPECT_EQ(mainLoop_.tasks.waiting(), 0U);
  EXPECT_THAT(delivered_, IsEmpty());
}

TEST_F(PressureMonitor, DeliversOnTheMainThreadOnly) {
  pressure_.report(warningFlag);
  queue().runAll();
  EXPECT_THAT(delivered_, IsEmpty());
  ASSERT_EQ(mainLoop_.tasks.waiting(), 1U);
  mainLoop_.tasks.runAll();
  EXPECT_THAT(delivered_, ElementsAre(MemoryPressure::warning));
}

TEST_F(PressureMonitor, DeliversTheReturnToNormal) {
  for (const PressureFlags flags : {criticalFlag, normalFlag}) pressure_.report(flags);
  queue().runAll();
  mainLoop_.tasks.runAll();
  EXPECT_THAT(delivered_, ElementsAre(MemoryPressure::critical, MemoryPressure::normal));
}

TEST_F(PressureMonitor, DeliversEveryReportInOrderEvenAtTheSameLevel) {
  for (const PressureFlags flags : {warningFlag, warningFlag, 0U, 0U, warningFlag | criticalFlag})
    pressure_.report(flags);
  queue().runAll();
  EXPECT_EQ(mainLoop_.tasks.waiting(), 5U);
  mainLoop_.tasks.runAll();
  EXPECT_THAT(delivered_,
              ElementsAre(MemoryPressure::warning, MemoryPressure::warning, MemoryPressure::normal,
                          MemoryPressure::normal, MemoryPressure::critical));
}

TEST_F(PressureMonitor, DestroysItsSourceWithItself) {
  EXPECT_EQ(pressure_.cancelled, 0);
  monitor_.reset();
  EXPECT_EQ(pressure_.cancelled, 1);
}

TEST_F(PressureMonitor, DoesNotCallTheHandlerAfterItsDestructor) {
  pressure_.report(criticalFlag);
  queue().runAll();
  pressure_.report(warningFlag);
  monitor_.reset();
  queue().runAll();
  mainLoop_.tasks.runAll();
  EXPECT_THAT(delivered_, IsEmpty());
}

TEST_F(PressureMonitor, CanBeDestroyedByItsHandler) {
  monitor_.reset();
  monitor_.emplace(std::make_unique<FakePressureSource>(pressure_), queues_.make("pressure"), mainLoop_,
                   [this](MemoryPressure level) {
                     monitor_.reset();
                     delivered_.push_back(level);
                   });
  pressure_.report(criticalFlag);
  pressure_.report(warningFlag);
  queue().runAll();
  mainLoop_.tasks.runAll();
  EXPECT_THAT(delivered_, ElementsAre(MemoryPressure::critical));
}

TEST_F(PressureMonitor, ActivatesItsQueueOnRequest) {
  EXPECT_FALSE(queue().activated);
  monitor_->activate();
  EXPECT_TRUE(queue().activated);
}

/// Records in its destructor whether its queue is active.
class RecordingSource final : public PressureSource {
 public:
  RecordingSource(const SteppedTasks& tasks, bool& wasActive) : tasks_(tasks), wasActive_(wasActive) {}
  RecordingSource(const RecordingSource&) = delete;
  RecordingSource& operator=(const RecordingSource&) = delete;
  ~RecordingSource() override { wasActive_ = tasks_.activated; }
  void resume(TaskQueue& /*queue*/, Handler /*handler*/) override {}

 private:
  const SteppedTasks& tasks_;
  bool& wasActive_;
};

TEST_F(PressureMonitor, ActivatesItsQueueBeforeItDestroysItsSource) {
  bool wasActive = false;
  auto inactive = queues_.make("inactive");
  monitor_.reset();
  monitor_.emplace(std::make_unique<RecordingSource>(queues_["inactive"], wasActive), std::move(inactive),
                   mainLoop_, [](MemoryPressure) {});
  monitor_.reset();
  EXPECT_TRUE(wasActive);
}

}  // namespace
}  // namespace tarn
