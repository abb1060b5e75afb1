// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include "monitor/view_model_fixture.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ViewModelTest, CallsItsPortsInAFixedOrderAtCreation) {
  start();
  EXPECT_THAT(machine_.calls,
              ElementsAre("queue com.tarn.sampler", "pressureLevel", "queue com.tarn.pressure"));
  EXPECT_EQ(pressure_.resumed, 1);
}

TEST_F(ViewModelTest, PublishesOnlyThePressureAtFirst) {
  pressureLevel_ = 4;
  start();
  EXPECT_EQ(published(), Published{.pressure = MemoryPressure::critical});
}

TEST_F(ViewModelTest, ReadsUnknownAndFailedPressureLevelsAsNormal) {
  for (const std::optional<std::int32_t> level : {std::optional<std::int32_t>{}, {0}, {3}, {-1}}) {
    pressureLevel_ = level;
    start();
    EXPECT_EQ(model_->pressure(), MemoryPressure::normal);
  }
  pressureLevel_ = 2;
  start();
  EXPECT_EQ(model_->pressure(), MemoryPressure::warning);
}

TEST_F(ViewModelTest, RequestsItsFirstSweepAtCreationAndRunsItOnItsQueue) {
  start();
  EXPECT_EQ(sweeps().waiting(), 1U);
  EXPECT_EQ(machine_.callsOf("allPIDs"), 0);
  sweeps().runAll();
  EXPECT_EQ(machine_.callsOf("allPIDs"), 1);
  EXPECT_EQ(model_->snapshot(), std::nullopt) << "published on the main thread only";
  mainTasks().runAll();
  ASSERT_TRUE(model_->snapshot());
  EXPECT_EQ(model_->snapshot()->groups.size(), 2U);
}

TEST_F(ViewModelTest, ReadsNoExtrasForItsFirstSweep) {
  startAndFinishSweep();
  EXPECT_EQ(machine_.callsOf("extras"), 0);
  EXPECT_EQ(model_->extras(), std::nullopt);
}

TEST_F(ViewModelTest, SweepsAfterEachIntervalOfThirtySeconds) {
  startAndFinishSweep();
  ASSERT_EQ(mainLoop_.timers.size(), 1U);
  EXPECT_EQ(mainLoop_.timers[0]->interval, 30.0);
  advanceTime(29.9);
  EXPECT_EQ(sweeps().waiting(), 0U);
  advanceTime(0.1);
  EXPECT_EQ(sweeps().waiting(), 1U);
  finishSweep();
  advanceTime(29.9);
  EXPECT_EQ(sweeps().waiting(), 0U);
  advanceTime(0.1);
  EXPECT_EQ(sweeps().waiting(), 1U);
}

TEST_F(ViewModelTest, PostsATimerTickToTheMainThread) {
  startAndFinishSweep();
  mainLoop_.advance(30);
  EXPECT_EQ(sweeps().waiting(), 0U);
  EXPECT_EQ(mainTasks().waiting(), 1U);
  mainTasks().runAll();
  EXPECT_EQ(sweeps().waiting(), 1U);
}

TEST_F(ViewModelTest, DropsATickWhileASweepIsInFlight) {
  start();
  advanceTime(30);
  EXPECT_EQ(sweeps().waiting(), 1U) << "only the first sweep";
  sweeps().runAll();
  mainLoop_.advance(30);
  ASSERT_EQ(mainTasks().waiting(), 2U) << "results, then the tick";
  auto& observed = observe();
  mainTasks().runOne();
  EXPECT_FALSE(observed.empty());
  mainTasks().runOne();
  EXPECT_EQ(sweeps().waiting(), 1U) << "the tick came after the results: a new sweep";

  sweeps().runAll();
  ASSERT_EQ(mainTasks().waiting(), 1U);
  model_->popoverOpened();
  EXPECT_EQ(sweeps().waiting(), 0U) << "dropped: the results are not published yet";
}

TEST_F(ViewModelTest, NeverQueuesASecondSweep) {
  start();
  const auto& observed = observe();
  advanceTime(300);
  EXPECT_EQ(sweeps().waiting(), 1U);
  EXPECT_THAT(observed, IsEmpty());
  finishSweep();
  EXPECT_EQ(sweeps().waiting(), 0U) << "no backlog";
  EXPECT_EQ(machine_.callsOf("allPIDs"), 1);
  advanceTime(30);
  EXPECT_EQ(sweeps().waiting(), 1U);
}

TEST_F(ViewModelTest, KeepsItsIntervalWhenTheClockJumps) {
  startAndFinishSweep();
  model_->popoverOpened();
  finishSweep();
  for (const double uptime : {30'000.0, 30'000.0, 5.0, 6.0}) {  // forward, unchanged, back, forward
    machine_.uptime = uptime;
    extras_.uptime = uptime;
    machine_.process(20).usage->cpuTime += 1'000'000'000;
    advanceTime(3);
    EXPECT_EQ(sweeps().waiting(), 1U);
    finishSweep();
    EXPECT_EQ(sweeps().waiting(), 0U) << "missed sweeps are not repeated";
    EXPECT_EQ(model_->extras()->uptime, uptime) << "as the system reports it";
    EXPECT_GE(model_->cpuPresentation().totalPercent, 0);
    EXPECT_LE(model_->cpuPresentation().totalPercent, 100);
  }
}

TEST_F(ViewModelTest, EmitsWillChangeBeforeEachChangeInAFixedOrder) {
  frontmost_ = FrontmostApplication{.bundlePath = "/opt/A.app"};
  machine_.memory.swapUsed = 7;
  startAndFinishSweep();
  const auto& observed = observe();
  machine_.memory.swapUsed = 8;
  machine_.process(10).usage->footprint = 1000;
  model_->popoverOpened();
  EXPECT_THAT(observed, IsEmpty());
  finishSweep();
  EXPECT_THAT(observed, ElementsAre(Published{.swapUsed = 7, .frontmostFootprint = 900},
                                    Published{.swapUsed = 8, .frontmostFootprint = 900},
                                    Published{.swapUsed = 8,
                                              .uptime = 1,
                                              .frontmostFootprint = 900,
                                              .thermalState = ThermalState::fair}));
  EXPECT_EQ(published(),
            (Published{
                .swapUsed = 8, .uptime = 1, .frontmostFootprint = 1300, .thermalState = ThermalState::fair}));
}

TEST_F(ViewModelTest, EmitsWillChangeForEqualValuesToo) {
  startAndFinishSweep();
  const auto& observed = observe();
  advanceTime(30);
  finishSweep();
  EXPECT_EQ(observed.size(), 2U) << "snapshot and frontmost footprint";
}

TEST_F(ViewModelTest, AcceptsRequestsOnlyAfterTheLastChange) {
  start();
  int emitted = 0;
  QObject::connect(model_.get(), &MonitorViewModel::willChange, model_.get(), [&] {
    ++emitted;
    model_->popoverOpened();
    EXPECT_EQ(sweeps().waiting(), 0U);
  });
  finishSweep();
  EXPECT_EQ(emitted, 2);
  model_->popoverOpened();
  EXPECT_EQ(sweeps().waiting(), 1U);
}

TEST_F(ViewModelTest, SweepsImmediatelyAndEveryThreeSecondsWhenThePopoverOpens) {
  startAndFinishSweep();
  model_->popoverOpened();
  EXPECT_EQ(sweeps().waiting(), 1U);
  ASSERT_EQ(mainLoop_.timers.size(), 2U);
  EXPECT_FALSE(mainLoop_.timers[0]->valid);
  EXPECT_TRUE(mainLoop_.timers[1]->valid);
  EXPECT_EQ(mainLoop_.timers[1]->interval, 3.0);
  finishSweep();
  for (int tick = 0; tick < 3; ++tick) {
    advanceTime(2.9);
    EXPECT_EQ(sweeps().waiting(), 0U);
    advanceTime(0.1);
    EXPECT_EQ(sweeps().waiting(), 1U);
    finishSweep();
  }
}

TEST_F(ViewModelTest, ReturnsToThirtySecondsWithoutASweepWhenThePopoverCloses) {
  startAndFinishSweep();
  model_->popoverOpened();
  finishSweep();
  model_->popoverClosed();
  EXPECT_EQ(sweeps().waiting(), 0U);
  ASSERT_EQ(mainLoop_.timers.size(), 3U);
  EXPECT_EQ(mainLoop_.validTimers(), 1);
  EXPECT_TRUE(mainLoop_.timers[2]->valid);
  EXPECT_EQ(mainLoop_.timers[2]->interval, 30.0);
  advanceTime(29.9);
  EXPECT_EQ(sweeps().waiting(), 0U);
  advanceTime(0.1);
  EXPECT_EQ(sweeps().waiting(), 1U);
}

TEST_F(ViewModelTest, KeepsOneTimerWhenThePopoverOpensAgain) {
  startAndFinishSweep();
  for (int i = 0; i < 3; ++i) model_->popoverOpened();
  EXPECT_EQ(mainLoop_.validTimers(), 1);
  EXPECT_EQ(sweeps().waiting(), 1U);
}

TEST_F(ViewModelTest, PublishesANewPressureLevelAndSweepsImmediately) {
  startAndFinishSweep();
  const auto& observed = observe();
  reportPressure(2);
  EXPECT_EQ(model_->pressure(), MemoryPressure::normal) << "the task for the main thread has not run";
  mainTasks().runAll();
  EXPECT_EQ(model_->pressure(), MemoryPressure::warning);
  ASSERT_EQ(observed.size(), 1U);
  EXPECT_EQ(observed[0].pressure, MemoryPressure::normal) << "emitted before the change";
  EXPECT_EQ(sweeps().waiting(), 1U);
  EXPECT_EQ(mainLoop_.timers.size(), 1U) << "the timer is unchanged";
}

TEST_F(ViewModelTest, PublishesANewPressureLevelWhenItsSweepIsDropped) {
  start();
  reportPressure(4);
  mainTasks().runAll();
  EXPECT_EQ(model_->pressure(), MemoryPressure::critical);
  EXPECT_EQ(sweeps().waiting(), 1U) << "only the first sweep";
  finishSweep();
  EXPECT_EQ(sweeps().waiting(), 0U);
}

TEST_F(ViewModelTest, PublishesEqualPressureLevelsEachTime) {
  startAndFinishSweep();
  const auto& observed = observe();
  for (int i = 0; i < 3; ++i) reportPressure(2);
  mainTasks().runAll();
  EXPECT_EQ(observed.size(), 3U);
}

TEST_F(ViewModelTest, ReadsExtrasInASweepForPressureWhileThePopoverIsOpen) {
  startAndFinishSweep();
  model_->popoverOpened();
  finishSweep();
  extras_.uptime = 5;
  reportPressure(1);
  mainTasks().runAll();
  finishSweep();
  EXPECT_EQ(model_->extras()->uptime, 5);
}

TEST_F(ViewModelTest, PresentsThePressureAloneBeforeTheFirstSnapshot) {
  pressureLevel_ = 2;
  machine_.memory.swapUsed = 9;
  start();
  EXPECT_EQ(model_->presentation(), (StatusPresentation{MemoryPressure::warning, 0}));
  EXPECT_EQ(model_->cpuPresentation(), (CPUPresentation{0, 8}));
}

TEST_F(ViewModelTest, PresentsTheSwapOfTheLatestSnapshot) {
  machine_.memory.swapUsed = 9;
  startAndFinishSweep();
  EXPECT_EQ(model_->presentation(), (StatusPresentation{MemoryPressure::normal, 9}));
}

TEST_F(ViewModelTest, PresentsTheSharesOfAllGroupsAndReadsTheCoreCountEachTime) {
  startAndFinishSweep();
  machine_.process(10).usage->cpuTime = 3'000'000'000;
  machine_.process(20).usage->cpuTime = 1'500'000'000;
  machine_.uptime = 1003;
  advanceTime(30);
  finishSweep();
  EXPECT_EQ(model_->cpuPresentation().coreCount, 8);
  EXPECT_DOUBLE_EQ(model_->cpuPresentation().totalPercent, 60)
      << "150 %, smoothed: the newest value has the weight 0.4";
  activeProcessors_ = 4;
  EXPECT_EQ(model_->cpuPresentation().coreCount, 4);
}

}  // namespace
}  // namespace tarn
