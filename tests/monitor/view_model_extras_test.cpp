// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include "monitor/view_model_fixture.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ViewModelTest, GathersExtrasOnItsQueueAfterTheSweep) {
  startAndSettle();
  machine_.calls.clear();
  model_->popoverOpened();
  EXPECT_THAT(machine_.calls, IsEmpty());
  sweeps().runAll();
  ASSERT_FALSE(machine_.calls.empty());
  // After the last look at memory, and the thermal state with the rest.
  const auto memory = std::find(machine_.calls.begin(), machine_.calls.end(), "memory");
  EXPECT_THAT(std::vector(memory, machine_.calls.end()),
              ElementsAre("memory", "extras rootVolume", "extras powerSources", "extras temperatures",
                          "extras uptime", "extras thermalState"));
  EXPECT_EQ(model_->extras(), std::nullopt);
  mainTasks().runAll();
  EXPECT_EQ(model_->extras(), SystemExtras{.uptime = 1});
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
  EXPECT_EQ(model_->extras(), SystemExtras{.uptime = 1});
}

TEST_F(ViewModelTest, GathersExtrasInASweepThatWasRequestedBeforeThePopoverClosed) {
  startAndSettle();
  model_->popoverOpened();
  model_->popoverClosed();
  finishSweep();
  EXPECT_EQ(model_->extras(), SystemExtras{.uptime = 1});
}

TEST_F(ViewModelTest, KeepsTheLastExtrasWhileThePopoverIsClosed) {
  startAndSettle();
  model_->popoverOpened();
  finishSweep();
  model_->popoverClosed();
  extras_.uptime = 2;
  extras_.thermalState = ThermalState::critical;
  pass(30);
  finishSweep();
  EXPECT_EQ(model_->extras()->uptime, 1);
  EXPECT_EQ(model_->thermalState(), ThermalState::fair);
  EXPECT_EQ(machine_.callsOf("extras uptime"), 1);

  model_->popoverOpened();
  finishSweep();
  EXPECT_EQ(model_->extras()->uptime, 2);
  EXPECT_EQ(model_->thermalState(), ThermalState::critical);
}

}  // namespace
}  // namespace tarn
