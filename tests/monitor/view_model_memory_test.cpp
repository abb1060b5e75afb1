// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The view model when there is no memory for a sweep.

#include <gmock/gmock.h>

#include <new>

#include "monitor/hand_over.hpp"
#include "monitor/view_model_fixture.hpp"

namespace tarn {
namespace {

class ViewModelWithoutMemory : public ViewModelTest {
 protected:
  ViewModelWithoutMemory() {
    MonitorPorts lean = ports();
    lean.sampler.uptime = [this, uptime = std::move(lean.sampler.uptime)] {
      if (refusesSweeps_) throw std::bad_alloc();
      return uptime();
    };
    lean.extras.temperatures = [this]() -> std::vector<double> {
      if (refusesGatherings_) throw std::bad_alloc();
      return {};
    };
    machine_.memory.swapUsed = 7;
    model_ = MonitorViewModel::create(std::move(lean));
  }

  bool refusesSweeps_ = false;
  bool refusesGatherings_ = false;
};

TEST_F(ViewModelWithoutMemory, KeepsWhatItHasAndSweepsAgainInTime) {
  finishSweep();
  const auto& observed = observe();
  refusesSweeps_ = true;
  machine_.memory.swapUsed = 8;
  for (int sweep = 0; sweep < 3; ++sweep) {
    pass(30);
    EXPECT_EQ(sweeps().waiting(), 1U) << "the one before has ended";
    finishSweep();
  }
  EXPECT_THAT(observed, testing::IsEmpty());
  ASSERT_TRUE(model_->snapshot());
  EXPECT_EQ(model_->snapshot()->system.swapUsed, 7U);

  refusesSweeps_ = false;
  pass(30);
  finishSweep();
  EXPECT_EQ(model_->snapshot()->system.swapUsed, 8U);
}

TEST_F(ViewModelWithoutMemory, CanBeSoInItsFirstSweep) {
  refusesSweeps_ = true;
  finishSweep();
  EXPECT_FALSE(model_->snapshot());
  refusesSweeps_ = false;
  model_->popoverOpened();
  finishSweep();
  EXPECT_TRUE(model_->snapshot());
}

TEST_F(ViewModelWithoutMemory, PublishesNoPartOfASweepWhoseGatheringFailed) {
  finishSweep();
  const auto& observed = observe();
  refusesGatherings_ = true;
  machine_.memory.swapUsed = 8;
  model_->popoverOpened();
  finishSweep();
  EXPECT_THAT(observed, testing::IsEmpty());
  refusesGatherings_ = false;
  pass(3);
  finishSweep();
  EXPECT_EQ(model_->snapshot()->system.swapUsed, 8U);
  EXPECT_TRUE(model_->extras());
}

/// Has no memory for the first two tasks that it is given.
class LeanQueue final : public TaskQueue {
 public:
  void async(Task task) override {
    if (++asked_ <= 2) throw std::bad_alloc();
    task();
  }

 private:
  int asked_ = 0;
};

TEST(HandOver, TriesUntilThereIsMemory) {
  LeanQueue queue;
  int done = 0;
  handOver(queue, [&done] { ++done; });
  EXPECT_EQ(done, 1);
}

}  // namespace
}  // namespace tarn
