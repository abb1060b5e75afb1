// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include "monitor/view_model_fixture.hpp"

namespace tarn {
namespace {

class ViewModelLifetime : public ViewModelTest {
 protected:
  /// Lets go of the view model; whatever keeps it alive now is its own doing.
  std::weak_ptr<MonitorViewModel> release() {
    std::weak_ptr<MonitorViewModel> model = model_;
    model_.reset();
    return model;
  }
};

TEST_F(ViewModelLifetime, EndsAtOnceWhenNoSweepIsInFlight) {
  startAndSettle();
  EXPECT_TRUE(release().expired());
  EXPECT_EQ(pressure_.cancelled, 1);
  EXPECT_EQ(mainLoop_.validTimers(), 0);
}

TEST_F(ViewModelLifetime, IsNotProlongedByTicksAndPressureOnTheirWay) {
  startAndSettle();
  mainLoop_.advance(30);
  reportPressure(4);
  pressure_.report(2);
  ASSERT_EQ(mainTasks().waiting(), 2U);
  EXPECT_TRUE(release().expired());
  queues_["com.tarn.pressure"].runAll();
  mainTasks().runAll();
  EXPECT_EQ(sweeps().waiting(), 0U);
}

TEST_F(ViewModelLifetime, LeavesATimersBlockWithNothingToDo) {
  startAndSettle();
  const auto block = mainLoop_.timers[0]->block;
  EXPECT_TRUE(release().expired());
  block();
  mainTasks().runAll();
  EXPECT_EQ(sweeps().waiting(), 0U);
}

TEST_F(ViewModelLifetime, LastsUntilTheSweepInFlightHasPublishedAndEndsOnTheMainThread) {
  start();
  int told = 0;
  QObject::connect(model_.get(), &MonitorViewModel::willChange, model_.get(), [&told] { ++told; });
  const auto model = release();
  EXPECT_FALSE(model.expired());
  sweeps().runAll();
  EXPECT_FALSE(model.expired()) << "never on the sweep's thread";
  EXPECT_EQ(told, 0);
  mainTasks().runAll();
  EXPECT_EQ(told, 2) << "snapshot and frontmost footprint";
  EXPECT_TRUE(model.expired());
  EXPECT_EQ(pressure_.cancelled, 1);
}

TEST_F(ViewModelLifetime, GoesOnWhileASweepInFlightKeepsIt) {
  start();
  const auto model = release();
  reportPressure(4);
  mainLoop_.advance(30);
  mainTasks().runAll();
  EXPECT_EQ(model.lock()->pressure(), MemoryPressure::critical);
  EXPECT_EQ(sweeps().waiting(), 1U) << "and never a second sweep";
  finishSweep();
  EXPECT_TRUE(model.expired());
}

}  // namespace
}  // namespace tarn
