// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// watchPressure() with scripted triggers, files and clock.

#include <gmock/gmock.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/psi/psi_pressure_source.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr PressureFlags normal = 1;
constexpr PressureFlags warning = 2;
constexpr PressureFlags critical = 4;

/// Ends each wait with the next step of the script, and cancels when no step is left.
class ScriptedTriggers final : public PsiTriggers {
 public:
  using Step = std::function<Wake(milliseconds timeout)>;

  bool armed = true;
  std::deque<Step> steps;
  std::vector<milliseconds> timeouts;

  bool arm() override { return armed; }
  Wake wait(milliseconds timeout) override {
    timeouts.push_back(timeout);
    if (steps.empty()) return {.cancelled = true};
    const Step step = steps.front();
    steps.pop_front();
    return step(timeout);
  }
  void cancel() override { steps.clear(); }
};

class WatchPressureTest : public testing::Test {
 protected:
  WatchPressureTest() {
    setAvailable(80);
    setStalls(0, 0);
  }

  void setAvailable(int percent) const {
    tree_.write("proc/meminfo", "MemTotal: 10000 kB\nMemAvailable: " + std::to_string(percent * 100) +
                                    " kB\nSwapTotal: 100 kB\nSwapFree: 100 kB\n");
  }

  void setStalls(std::uint64_t someMicros, std::uint64_t fullMicros,
                 const std::string& someAverage = "0.00") const {
    tree_.write("proc/pressure/memory",
                "some avg10=" + someAverage + " avg60=0.00 avg300=0.00 total=" + std::to_string(someMicros) +
                    "\nfull avg10=0.00 avg60=0.00 avg300=0.00 total=" + std::to_string(fullMicros) + "\n");
  }

  /// Adds a wait that times out, during which `change` changes the files.
  void timeOut(const std::function<void()>& change = [] {}) {
    triggers_.steps.emplace_back([this, change](milliseconds timeout) {
      now_ += timeout;
      change();
      return PsiTriggers::Wake{};
    });
  }

  /// Adds a wait that ends with `wake` after a second, in which both totals grow by more than any threshold.
  void wakeUp(
      PsiTriggers::Wake wake, const std::function<void()>& change = [] {}) {
    triggers_.steps.emplace_back([this, wake, change](milliseconds /*timeout*/) {
      now_ += seconds(1);
      setStalls(1'000'000, 1'000'000);
      change();
      return wake;
    });
  }

  std::vector<PressureFlags> run() {
    std::vector<PressureFlags> reported;
    watchPressure(
        tree_.roots(), triggers_, [this] { return now_; },
        [&reported](PressureFlags flags) { reported.push_back(flags); });
    EXPECT_THAT(triggers_.steps, IsEmpty()) << "the watch ended before the script";
    return reported;
  }

  TemporaryTree tree_;
  ScriptedTriggers triggers_;
  std::chrono::steady_clock::time_point now_{};
};

TEST_F(WatchPressureTest, WaitsFor15SecondsWithTriggers) {
  timeOut();
  timeOut();
  EXPECT_THAT(run(), IsEmpty()) << "a timeout without a change is not reported";
  EXPECT_THAT(triggers_.timeouts, ElementsAre(seconds(15), seconds(15), seconds(15)));
}

TEST_F(WatchPressureTest, ReportsEachTriggerEvenAtTheSameLevel) {
  setAvailable(30);
  wakeUp({.some = true});
  wakeUp({.some = true});
  wakeUp({.some = true, .full = true}, [this] { setAvailable(10); });
  EXPECT_THAT(run(), ElementsAre(warning, warning, critical));
}

TEST_F(WatchPressureTest, ReportsNormalForATriggerOnAMachineWithEnoughMemory) {
  wakeUp({.some = true, .full = true});
  EXPECT_THAT(run(), ElementsAre(normal));
}

TEST_F(WatchPressureTest, IgnoresTheFirstReportOfATriggerWhoseTotalDidNotReachTheThreshold) {
  setAvailable(10);
  setStalls(9'000'000, 9'000'000);
  wakeUp({.some = true, .full = true}, [this] { setStalls(9'200'000, 9'399'999); });
  EXPECT_THAT(run(), ElementsAre(warning)) << "the full total grew by less than 400 ms";
}

TEST_F(WatchPressureTest, AcceptsTheSecondReportOfATriggerForAllTotals) {
  setAvailable(10);
  setStalls(9'000'000, 9'000'000);
  wakeUp({.some = true, .full = true}, [this] { setStalls(9'000'001, 9'000'001); });
  wakeUp({.some = true}, [this] { setStalls(9'000'002, 9'000'001); });
  wakeUp({.full = true}, [this] { setStalls(9'000'003, 9'000'002); });
  EXPECT_THAT(run(), ElementsAre(warning, critical));
}

TEST_F(WatchPressureTest, AcceptsTheFirstReportWhenThePsiFileIsUnreadable) {
  setAvailable(30);
  tree_.remove("proc/pressure");
  wakeUp({.some = true});
  EXPECT_THAT(run(), ElementsAre(warning));
}

TEST_F(WatchPressureTest, ReportsNormalAfterAQuietWait) {
  setAvailable(30);
  wakeUp({.some = true});
  timeOut();
  timeOut();
  EXPECT_THAT(run(), ElementsAre(warning, normal));
}

TEST_F(WatchPressureTest, KeepsTheLevelWhileTheAverageIs5PercentOrMore) {
  setAvailable(30);
  wakeUp({.some = true}, [this] { setStalls(200'000, 0, "5.00"); });
  timeOut();
  timeOut([this] { setStalls(0, 0, "4.99"); });
  EXPECT_THAT(run(), ElementsAre(warning, normal));
}

TEST_F(WatchPressureTest, ReportsLowAvailableMemoryWithoutATrigger) {
  timeOut([this] { setAvailable(9); });
  timeOut();
  timeOut([this] { setAvailable(80); });
  EXPECT_THAT(run(), ElementsAre(warning, normal));
}

TEST_F(WatchPressureTest, DoesNotReportTheLevelAtTheStart) {
  setAvailable(9);
  timeOut();
  timeOut([this] { setAvailable(80); });
  EXPECT_THAT(run(), ElementsAre(normal)) << "only the change is reported";
}

TEST_F(WatchPressureTest, PollsEveryTwoSecondsWithoutTriggers) {
  triggers_.armed = false;
  setAvailable(30);
  timeOut([this] { setStalls(199'999, 0); });
  timeOut([this] { setStalls(399'999, 0); });
  timeOut([this] { setStalls(599'999, 0); });
  timeOut();
  EXPECT_THAT(run(), ElementsAre(warning, warning));
  EXPECT_THAT(triggers_.timeouts, Each(seconds(2)));
}

TEST_F(WatchPressureTest, FindsNoStallWhenTheClockJumps) {
  triggers_.armed = false;
  setAvailable(30);
  const auto jump = [this](seconds difference, std::uint64_t micros) {
    triggers_.steps.emplace_back([this, difference, micros](milliseconds /*timeout*/) {
      now_ += difference;
      setStalls(micros, 0);
      return PsiTriggers::Wake{};
    });
  };
  jump(std::chrono::hours(8), 300'000);
  jump(seconds(0), 600'000);
  jump(-std::chrono::hours(8), 900'000);
  EXPECT_THAT(run(), IsEmpty());
  jump(seconds(2), 1'300'000);
  EXPECT_THAT(run(), ElementsAre(warning)) << "stalls count again after the jump";
}

TEST_F(WatchPressureTest, FindsFullStallsWithoutTriggers) {
  triggers_.armed = false;
  setAvailable(10);
  timeOut([this] { setStalls(500'000, 400'000); });
  EXPECT_THAT(run(), ElementsAre(critical));
}

TEST_F(WatchPressureTest, PollsOnceTheTriggersAreLost) {
  setAvailable(30);
  wakeUp({.lost = true}, [this] { setStalls(9'000'000, 0); });
  timeOut([this] { setStalls(9'100'000, 0); });
  timeOut([this] { setStalls(9'300'000, 0); });
  EXPECT_THAT(run(), ElementsAre(warning));
  EXPECT_THAT(triggers_.timeouts, ElementsAre(seconds(15), seconds(2), seconds(2), seconds(2)));
}

TEST_F(WatchPressureTest, UsesAvailableMemoryAloneWithoutPsi) {
  triggers_.armed = false;
  tree_.remove("proc/pressure");
  timeOut([this] { setAvailable(9); });
  for (int i = 0; i < 7; ++i) timeOut([this] { setAvailable(50); });
  timeOut();
  EXPECT_THAT(run(), ElementsAre(warning, normal)) << "after 16 seconds";
}

TEST_F(WatchPressureTest, KeepsTheLevelWhileMeminfoIsUnreadable) {
  setAvailable(30);
  wakeUp({.some = true});
  timeOut([this] { tree_.remove("proc/meminfo"); });
  wakeUp({.some = true, .full = true});
  EXPECT_THAT(run(), ElementsAre(warning, warning));
}

TEST_F(WatchPressureTest, ReportsNothingWithoutReadableFiles) {
  triggers_.armed = false;
  tree_.remove("proc");
  timeOut();
  EXPECT_THAT(run(), IsEmpty());
}

TEST_F(WatchPressureTest, ReportsNothingOnceCancelled) {
  setAvailable(30);
  wakeUp({.cancelled = true, .some = true});
  EXPECT_THAT(run(), IsEmpty());
}

}  // namespace
}  // namespace tarn
