// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include "monitor/view_model_fixture.hpp"

namespace tarn {
namespace {

class ViewModelLifetime : public ViewModelTest {
 protected:
  /// Releases the test's reference.
  std::weak_ptr<MonitorViewModel> release() {
    std::weak_ptr<MonitorViewModel> model = model_;
    model_.reset();
    return model;
  }
};

TEST_F(ViewModelLifetime, IsDestroyedImmediatelyWithoutASweepInFlight) {
  startAndFinishSweep();
  EXPECT_TRUE(release().expired());
  EXPECT_EQ(pressure_.cancelled, 1);
  EXPECT_EQ(mainLoop_.validTimers(), 0);
}

TEST_F(ViewModelLifetime, IsNotExtendedByPostedTicksAndPressureReports) {
  startAndFinishSweep();
  mainLoop_.advance(30);
  reportPressure(4);
  pressure_.report(2);
  ASSERT_EQ(mainTasks().waiting(), 2U);
  EXPECT_TRUE(release().expired());
  queues_["com.tarn.pressure"].runAll();
  mainTasks().runAll();
  EXPECT_EQ(sweeps().waiting(), 0U);
}

TEST_F(ViewModelLifetime, RequestsNoSweepForATickAfterItsDestruction) {
  startAndFinishSweep();
  const auto action = mainLoop_.timers[0]->action;
  EXPECT_TRUE(release().expired());
  action();
  mainTasks().runAll();
  EXPECT_EQ(sweeps().waiting(), 0U);
}

TEST_F(ViewModelLifetime, LastsUntilTheSweepInFlightHasPublishedOnTheMainThread) {
  start();
  int emitted = 0;
  QObject::connect(model_.get(), &MonitorViewModel::willChange, model_.get(), [&emitted] { ++emitted; });
  const auto model = release();
  EXPECT_FALSE(model.expired());
  sweeps().runAll();
  EXPECT_FALSE(model.expired()) << "destroyed on the sweep's thread";
  EXPECT_EQ(emitted, 0);
  mainTasks().runAll();
  EXPECT_EQ(emitted, 2) << "snapshot and frontmost footprint";
  EXPECT_TRUE(model.expired());
  EXPECT_EQ(pressure_.cancelled, 1);
}

TEST_F(ViewModelLifetime, StillHandlesEventsWhileASweepIsInFlight) {
  start();
  const auto model = release();
  reportPressure(4);
  mainLoop_.advance(30);
  mainTasks().runAll();
  EXPECT_EQ(model.lock()->pressure(), MemoryPressure::critical);
  EXPECT_EQ(sweeps().waiting(), 1U) << "no second sweep";
  finishSweep();
  EXPECT_TRUE(model.expired());
}

TEST_F(ViewModelTest, ActivatesItsQueuesInStartSweeping) {
  start();
  EXPECT_FALSE(sweeps().activated);
  EXPECT_FALSE(queues_["com.tarn.pressure"].activated);
  EXPECT_EQ(sweeps().waiting(), 1U) << "the first sweep is requested at creation";
  model_->startSweeping();
  model_->startSweeping();
  EXPECT_TRUE(sweeps().activated);
  EXPECT_TRUE(queues_["com.tarn.pressure"].activated);
  EXPECT_EQ(sweeps().waiting(), 1U);
}

TEST_F(ViewModelTest, ActivatesItsQueuesWhenThePopoverOpens) {
  start();
  model_->popoverOpened();
  EXPECT_TRUE(sweeps().activated);
  EXPECT_TRUE(queues_["com.tarn.pressure"].activated);
}

}  // namespace
}  // namespace tarn
