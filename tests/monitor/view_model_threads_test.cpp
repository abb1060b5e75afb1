// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The view model with its real threads and run loop.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <atomic>
#include <memory>
#include <set>
#include <thread>
#include <utility>

#include "monitor/concurrency.hpp"
#include "monitor/monitor_view_model.hpp"
#include "monitor/qt_run_loop.hpp"
#include "support/fake_extras.hpp"
#include "support/fake_machine.hpp"

namespace tarn {
namespace {

template <typename Condition>
void processEventsUntil(Condition condition) {
  while (!condition()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Reports pressure on its queue each time that the test calls `allowAnother`. Its task runs on the queue
/// until the source is destroyed.
class ControlledPressureSource final : public PressureSource {
 public:
  ControlledPressureSource() = default;
  ControlledPressureSource(const ControlledPressureSource&) = delete;
  ControlledPressureSource& operator=(const ControlledPressureSource&) = delete;
  ~ControlledPressureSource() override {
    setAllowed(cancelled);
    run_->ended.wait(false);
  }

  void resume(TaskQueue& queue, Handler handler) override {
    queue.async([run = run_, handler = std::move(handler)] {
      for (int reported = 0; run->allowed != cancelled;) {
        run->allowed.wait(reported);
        if (run->allowed > reported) handler(PressureFlags{1} << (reported++ % 3));
      }
      run->ended = true;
      run->ended.notify_one();
    });
  }

  void allowAnother() { setAllowed(run_->allowed + 1); }

 private:
  static constexpr int cancelled = -1;

  struct Run {
    std::atomic<int> allowed = 0;
    std::atomic<bool> ended = false;
  };

  void setAllowed(int allowed) {
    run_->allowed = allowed;
    run_->allowed.notify_one();
  }

  std::shared_ptr<Run> run_ = std::make_shared<Run>();
};

class ViewModelThreads : public ::testing::Test {
 protected:
  ViewModelThreads() {
    for (std::int32_t pid = 100; pid < 140; ++pid) {
      machine_.processes.push_back({.pid = pid,
                                    .path = "/opt/App " + std::to_string(pid % 7) + ".app/run",
                                    .usage = ProcessUsage{.footprint = 1}});
    }
    extras_.volume = VolumeValues{1, 1, "a name that is too long for the buffer inside std::string"};
    extras_.onCall = [this](const std::string&) {
      threads_.insert(std::this_thread::get_id());
      extras_.uptime += 1;
    };
  }

  std::shared_ptr<MonitorViewModel> create(SerialQueue::Start start = SerialQueue::Start::active) {
    SamplerPort sampler = samplerPortOf(machine_);
    // From now on only the sampler's thread uses the machine. The machine changes in each sweep.
    sampler.uptime = [this, owned = recordDestruction()] {
      threads_.insert(std::this_thread::get_id());
      machine_.calls.clear();
      ++machine_.memory.swapUsed;
      for (FakeProcess& process : machine_.processes) process.usage->cpuTime += 1'000'000;
      return machine_.uptime += 0.001;
    };
    auto pressure = std::make_unique<ControlledPressureSource>();
    pressure_ = pressure.get();
    return MonitorViewModel::create(
        {.mainLoop = mainLoop_,
         .makeQueue = [start](const std::string&) { return std::make_unique<SerialQueue>(start); },
         .sampler = std::move(sampler),
         .extras = extras_.port(),
         .pressureLevel = [] { return 1; },
         .pressureSource = std::move(pressure),
         .frontmostApplication =
             [] { return FrontmostApplication{.bundlePath = "/opt/App 3.app", .processIdentifier = 0}; },
         .activeProcessorCount = [] { return 8; }});
  }

  /// Returns an object whose deleter stores its thread; the sampler owns it.
  std::shared_ptr<int> recordDestruction() {
    return {new int, [this](const int* object) {
              destroyedOn_ = std::this_thread::get_id();
              delete object;
            }};
  }

  QtRunLoop mainLoop_;
  FakeMachine machine_;
  FakeExtras extras_;                  // sampler's thread only
  std::set<std::thread::id> threads_;  // sampler's thread only
  ControlledPressureSource* pressure_ = nullptr;
  std::thread::id destroyedOn_;
};

TEST_F(ViewModelThreads, SweepWhilePressureIsReportedAndThePopoverOpensAndCloses) {
  auto model = create();
  // The swap figure is different in each sweep.
  const auto swapUsed = [&model] { return model->presentation().swapUsed; };
  double lastUptime = 0;
  for (int round = 0; round < 300; ++round) {
    const std::uint64_t before = swapUsed();
    round % 3 == 2 ? model->popoverClosed() : model->popoverOpened();
    pressure_->allowAnother();
    processEventsUntil([&] { return swapUsed() != before; });
    EXPECT_GT(swapUsed(), before);
    EXPECT_EQ(model->snapshot()->groups.size(), 7U);
    EXPECT_EQ(model->snapshot()->attributedTotal(), 40U);
    EXPECT_EQ(model->frontmostFootprint(), 6U);
    if (!model->extras()) continue;
    EXPECT_GE(model->extras()->uptime, lastUptime);
    lastUptime = model->extras()->uptime;
  }
  EXPECT_GT(lastUptime, 1);

  const std::weak_ptr<MonitorViewModel> inFlight = std::exchange(model, nullptr);
  processEventsUntil([&inFlight] { return inFlight.expired(); });
  EXPECT_EQ(destroyedOn_, std::this_thread::get_id());
  EXPECT_EQ(threads_.size(), 1U);
  EXPECT_FALSE(threads_.contains(std::this_thread::get_id()));
}

TEST_F(ViewModelThreads, DoNotBlockTheMainThreadWhileASensorBlocks) {
  std::atomic<bool> isRequested = false;
  std::atomic<bool> isReleased = false;
  extras_.onCall = [&](const std::string& operation) {
    if (operation != "temperatures") return;
    isRequested = true;
    isRequested.notify_one();
    isReleased.wait(false);
  };
  auto model = create();
  processEventsUntil([&model] { return model->snapshot().has_value(); });
  const std::uint64_t before = model->presentation().swapUsed;
  model->popoverOpened();
  isRequested.wait(false);

  bool taskRan = false;
  mainLoop_.async([&taskRan] { taskRan = true; });
  model->popoverClosed();
  model->popoverOpened();
  processEventsUntil([&taskRan] { return taskRan; });
  EXPECT_EQ(model->presentation().swapUsed, before) << "the sweep is still in flight";
  EXPECT_EQ(model->extras(), std::nullopt);

  isReleased = true;
  isReleased.notify_one();
  processEventsUntil([&model] { return model->extras().has_value(); });
  EXPECT_GT(model->presentation().swapUsed, before);
  const std::weak_ptr<MonitorViewModel> inFlight = std::exchange(model, nullptr);
  processEventsUntil([&inFlight] { return inFlight.expired(); });
}

TEST_F(ViewModelThreads, EndWithTheViewModelWheneverItIsReleased) {
  for (int round = 0; round < 50; ++round) {
    destroyedOn_ = {};
    threads_.clear();
    auto model = create();
    for (int report = 0; report < round % 4; ++report) pressure_->allowAnother();
    if (round % 2 == 1) {
      processEventsUntil([&model] { return model->snapshot().has_value(); });
      model->popoverOpened();
    }
    const std::weak_ptr<MonitorViewModel> inFlight = std::exchange(model, nullptr);
    EXPECT_FALSE(inFlight.expired());
    processEventsUntil([&inFlight] { return inFlight.expired(); });
    EXPECT_EQ(destroyedOn_, std::this_thread::get_id());
  }
}

TEST_F(ViewModelThreads, RunNoTaskUntilSweepingStarts) {
  auto model = create(SerialQueue::Start::inactive);
  pressure_->allowAnother();
  bool taskRan = false;
  mainLoop_.async([&taskRan] { taskRan = true; });
  processEventsUntil([&taskRan] { return taskRan; });
  EXPECT_TRUE(machine_.calls.empty());
  EXPECT_EQ(model->snapshot(), std::nullopt);

  model->startSweeping();
  processEventsUntil([&model] { return model->snapshot().has_value(); });
  const std::weak_ptr<MonitorViewModel> inFlight = std::exchange(model, nullptr);
  processEventsUntil([&inFlight] { return inFlight.expired(); });
}

TEST_F(ViewModelThreads, EndWhenSweepingStartsJustBeforeTheRelease) {
  auto model = create(SerialQueue::Start::inactive);
  model->startSweeping();
  const std::weak_ptr<MonitorViewModel> inFlight = std::exchange(model, nullptr);
  processEventsUntil([&inFlight] { return inFlight.expired(); });
  EXPECT_EQ(destroyedOn_, std::this_thread::get_id());
}

}  // namespace
}  // namespace tarn
