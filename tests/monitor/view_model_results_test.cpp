// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Results of a sweep: extras, the frontmost application, and no results when memory runs out.

#include <gmock/gmock.h>

#include <new>

#include "monitor/view_model_fixture.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ViewModelTest, ReadsExtrasOnItsQueueAfterTheSweep) {
  startAndFinishSweep();
  machine_.calls.clear();
  model_->popoverOpened();
  EXPECT_THAT(machine_.calls, IsEmpty());
  sweeps().runAll();
  ASSERT_FALSE(machine_.calls.empty());
  // The extras, including the thermal state, are read after the system memory.
  const auto memory = std::find(machine_.calls.begin(), machine_.calls.end(), "memory");
  EXPECT_THAT(std::vector(memory, machine_.calls.end()),
              ElementsAre("memory", "extras rootVolume", "extras powerSources", "extras temperatures",
                          "extras uptime", "extras thermalState"));
  EXPECT_EQ(model_->extras(), std::nullopt);
  mainTasks().runAll();
  EXPECT_EQ(model_->extras(), SystemExtras{.uptime = 1});
  EXPECT_EQ(model_->thermalState(), ThermalState::fair);
}

TEST_F(ViewModelTest, ReadsNoExtrasInASweepRequestedBeforeThePopoverOpened) {
  start();
  model_->popoverOpened();
  EXPECT_EQ(sweeps().waiting(), 1U) << "the request of popoverOpened is dropped";
  finishSweep();
  EXPECT_TRUE(model_->snapshot());
  EXPECT_EQ(model_->extras(), std::nullopt);
  EXPECT_EQ(sweeps().waiting(), 0U);
  advanceTime(3);
  finishSweep();
  EXPECT_EQ(model_->extras(), SystemExtras{.uptime = 1});
}

TEST_F(ViewModelTest, ReadsExtrasInASweepRequestedBeforeThePopoverClosed) {
  startAndFinishSweep();
  model_->popoverOpened();
  model_->popoverClosed();
  finishSweep();
  EXPECT_EQ(model_->extras(), SystemExtras{.uptime = 1});
}

TEST_F(ViewModelTest, KeepsTheLastExtrasWhileThePopoverIsClosed) {
  startAndFinishSweep();
  model_->popoverOpened();
  finishSweep();
  model_->popoverClosed();
  extras_.uptime = 2;
  extras_.thermalState = ThermalState::critical;
  advanceTime(30);
  finishSweep();
  EXPECT_EQ(model_->extras()->uptime, 1);
  EXPECT_EQ(model_->thermalState(), ThermalState::fair);
  EXPECT_EQ(machine_.callsOf("extras uptime"), 1);

  model_->popoverOpened();
  finishSweep();
  EXPECT_EQ(model_->extras()->uptime, 2);
  EXPECT_EQ(model_->thermalState(), ThermalState::critical);
}

TEST_F(ViewModelTest, PublishesTheFootprintOfTheFrontmostGroup) {
  frontmost_ = FrontmostApplication{.bundlePath = "/opt/A.app", .processIdentifier = 11};
  startAndFinishSweep();
  EXPECT_EQ(model_->frontmostFootprint(), 900U);
}

TEST_F(ViewModelTest, FindsAFrontmostApplicationWithoutBundlePathByItsProcess) {
  frontmost_ = FrontmostApplication{.processIdentifier = 20};
  startAndFinishSweep();
  EXPECT_EQ(model_->frontmostFootprint(), 50U);
  frontmost_ = FrontmostApplication{.processIdentifier = 11};
  advanceTime(30);
  finishSweep();
  EXPECT_EQ(model_->frontmostFootprint(), 900U) << "of the group, not of the process";
}

TEST_F(ViewModelTest, HasNoFrontmostFootprintWhenTheApplicationIsNotInTheSnapshot) {
  frontmost_ = FrontmostApplication{.bundlePath = "/opt/A.app"};
  startAndFinishSweep();
  frontmost_ = FrontmostApplication{.bundlePath = "/opt/Z.app", .processIdentifier = 99};
  advanceTime(30);
  finishSweep();
  EXPECT_EQ(model_->frontmostFootprint(), std::nullopt);
}

TEST_F(ViewModelTest, HasNoFrontmostFootprintWithoutAFrontmostApplication) {
  frontmost_ = FrontmostApplication{.bundlePath = "/opt/A.app"};
  startAndFinishSweep();
  EXPECT_EQ(model_->frontmostFootprint(), 900U);
  frontmost_.reset();
  advanceTime(30);
  finishSweep();
  EXPECT_EQ(model_->frontmostFootprint(), std::nullopt);
}

TEST_F(ViewModelTest, ReadsTheFrontmostApplicationWhenItPublishes) {
  start();
  sweeps().runAll();
  frontmost_ = FrontmostApplication{.processIdentifier = 20};
  mainTasks().runAll();
  EXPECT_EQ(model_->frontmostFootprint(), 50U);
}

class ViewModelOutOfMemory : public ViewModelTest {
 protected:
  ViewModelOutOfMemory() {
    MonitorPorts failingPorts = ports();
    failingPorts.sampler.uptime = [this, uptime = std::move(failingPorts.sampler.uptime)] {
      if (failsSweeps_) throw std::bad_alloc();
      return uptime();
    };
    failingPorts.extras.temperatures = [this]() -> std::vector<double> {
      if (failsExtras_) throw std::bad_alloc();
      return {};
    };
    machine_.memory.swapUsed = 7;
    model_ = MonitorViewModel::create(std::move(failingPorts));
  }

  bool failsSweeps_ = false;
  bool failsExtras_ = false;
};

TEST_F(ViewModelOutOfMemory, KeepsPublishedValuesAndSweepsAtTheNextTick) {
  finishSweep();
  const auto& observed = observe();
  failsSweeps_ = true;
  machine_.memory.swapUsed = 8;
  for (int sweep = 0; sweep < 3; ++sweep) {
    advanceTime(30);
    EXPECT_EQ(sweeps().waiting(), 1U) << "the previous sweep has ended";
    finishSweep();
  }
  EXPECT_THAT(observed, IsEmpty());
  ASSERT_TRUE(model_->snapshot());
  EXPECT_EQ(model_->snapshot()->system.swapUsed, 7U);

  failsSweeps_ = false;
  advanceTime(30);
  finishSweep();
  EXPECT_EQ(model_->snapshot()->system.swapUsed, 8U);
}

TEST_F(ViewModelOutOfMemory, SurvivesAFailedFirstSweep) {
  failsSweeps_ = true;
  finishSweep();
  EXPECT_FALSE(model_->snapshot());
  failsSweeps_ = false;
  model_->popoverOpened();
  finishSweep();
  EXPECT_TRUE(model_->snapshot());
}

TEST_F(ViewModelOutOfMemory, PublishesNoResultsWhenReadingExtrasFails) {
  finishSweep();
  const auto& observed = observe();
  failsExtras_ = true;
  machine_.memory.swapUsed = 8;
  model_->popoverOpened();
  finishSweep();
  EXPECT_THAT(observed, IsEmpty());
  failsExtras_ = false;
  advanceTime(3);
  finishSweep();
  EXPECT_EQ(model_->snapshot()->system.swapUsed, 8U);
  EXPECT_TRUE(model_->extras());
}

}  // namespace
}  // namespace tarn
