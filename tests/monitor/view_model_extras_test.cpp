// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include "monitor/view_model_fixture.hpp"

namespace tarn {
namespace {

using testing::IsEmpty;

TEST_F(ViewModelTest, GathersExtrasOnItsQueueAfterTheSweep) {
  startAndSettle();
  machine_.calls.clear();
  model_->popoverOpened();
  EXPECT_THAT(machine_.calls, IsEmpty());
  sweeps().runAll();
  ASSERT_FALSE(machine_.calls.empty());
  EXPECT_EQ(machine_.calls.back(), "extras");
  EXPECT_EQ(machine_.callsOf("extras"), 1);
  EXPECT_EQ(model_->extras(), std::nullopt);
  mainTasks().runAll();
  EXPECT_EQ(model_->extras(), extras_.extras);
  EXPECT_EQ(model_->thermalState(), ThermalState::fair);
}

TEST_F(ViewModelTest, GathersNoExtrasInASweepThatWasRequestedBeforeThePopoverOpened) {
  start();
  model_->popoverOpened();
  EXPECT_EQ(sweeps().waiting(), 1U) << "the opening's own request is dropped";
  finishSweep();
  EXPECT_TRUE(model_->snapshot());
  EXPECT_EQ(model_->extras(), std::nullopt);
  EXPECT_EQ(sweeps().waiting(), 0U);
  pass(3);
  finishSweep();
  EXPECT_EQ(model_->extras(), extras_.extras);
}

TEST_F(ViewModelTest, GathersExtrasInASweepThatWasRequestedBeforeThePopoverClosed) {
  startAndSettle();
  model_->popoverOpened();
  model_->popoverClosed();
  finishSweep();
  EXPECT_EQ(model_->extras(), extras_.extras);
}

TEST_F(ViewModelTest, KeepsTheLastExtrasWhileThePopoverIsClosed) {
  startAndSettle();
  model_->popoverOpened();
  finishSweep();
  model_->popoverClosed();
  extras_ = {.extras = {.uptime = 2}, .thermalState = ThermalState::critical};
  pass(30);
  finishSweep();
  EXPECT_EQ(model_->extras()->uptime, 1);
  EXPECT_EQ(model_->thermalState(), ThermalState::fair);
  EXPECT_EQ(machine_.callsOf("extras"), 1);

  model_->popoverOpened();
  finishSweep();
  EXPECT_EQ(model_->extras()->uptime, 2);
  EXPECT_EQ(model_->thermalState(), ThermalState::critical);
}

TEST_F(ViewModelTest, NeverHasExtrasWhereNothingReadsThem) {
  MonitorPorts withoutReader = ports();
  withoutReader.readExtras = nullptr;
  model_ = MonitorViewModel::create(std::move(withoutReader));
  finishSweep();
  const auto& observed = observe();
  model_->popoverOpened();
  finishSweep();
  EXPECT_EQ(model_->extras(), std::nullopt);
  EXPECT_EQ(thermalPhrase(model_->thermalState()), "Temperature unknown");
  EXPECT_EQ(observed.size(), 2U);
}

}  // namespace
}  // namespace tarn
