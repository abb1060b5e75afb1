// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The watch, led step by step through what its kernel and its clock do.

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

/// Ends each wait as the test says, and the watch when the test has said all.
class ScriptedEvents final : public PressureEvents {
 public:
  using Step = std::function<PressureWake(milliseconds timeout)>;

  bool armed = true;
  std::deque<Step> steps;
  std::vector<milliseconds> timeouts;

  bool arm() override { return armed; }
  PressureWake wait(milliseconds timeout) override {
    timeouts.push_back(timeout);
    if (steps.empty()) return {.cancelled = true};
    const Step step = steps.front();
    steps.pop_front();
    return step(timeout);
  }
  void cancel() override { steps.clear(); }
};

class PressureWatchTest : public testing::Test {
 protected:
  PressureWatchTest() {
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

  /// A wait that lasts as long as it may and finds the system as `change` leaves it.
  void timeOut(const std::function<void()>& change = [] {}) {
    events_.steps.emplace_back([this, change](milliseconds timeout) {
      now_ += timeout;
      change();
      return PressureWake{};
    });
  }

  /// A wait that the kernel ends after a second, in which tasks waited long enough for any report.
  void event(
      PressureWake wake, const std::function<void()>& change = [] {}) {
    events_.steps.emplace_back([this, wake, change](milliseconds /*timeout*/) {
      now_ += seconds(1);
      setStalls(1'000'000, 1'000'000);
      change();
      return wake;
    });
  }

  std::vector<PressureFlags> run() {
    std::vector<PressureFlags> told;
    PressureWatch(tree_.roots(), events_, [this] { return now_; }).run([&](PressureFlags flags) {
      told.push_back(flags);
    });
    EXPECT_THAT(events_.steps, IsEmpty()) << "the watch ended too early";
    return told;
  }

  TemporaryTree tree_;
  ScriptedEvents events_;
  PressureHysteresis::TimePoint now_{};
};

TEST_F(PressureWatchTest, RestsFor15SecondsWhereTheKernelNotifies) {
  timeOut();
  timeOut();
  EXPECT_THAT(run(), IsEmpty()) << "quiet looks that change nothing are not told";
  EXPECT_THAT(events_.timeouts, ElementsAre(seconds(15), seconds(15), seconds(15)));
}

TEST_F(PressureWatchTest, TellsOfEachNotificationEvenAtTheSameLevel) {
  setAvailable(30);
  event({.some = true});
  event({.some = true});
  event({.some = true, .full = true}, [this] { setAvailable(10); });
  EXPECT_THAT(run(), ElementsAre(warning, warning, critical));
}

TEST_F(PressureWatchTest, ANotificationOnAMachineWithMemoryToSpareIsToldAsNormal) {
  event({.some = true, .full = true});
  EXPECT_THAT(run(), ElementsAre(normal));
}

TEST_F(PressureWatchTest, TheFirstReportOfEachKindIsBelievedOnlyIfTasksWaitedThatLong) {
  setAvailable(10);
  setStalls(9'000'000, 9'000'000);
  event({.some = true, .full = true}, [this] { setStalls(9'200'000, 9'399'999); });
  EXPECT_THAT(run(), ElementsAre(warning)) << "the other one came too soon";
}

TEST_F(PressureWatchTest, ASecondReportIsBelievedWhateverTheFirstWas) {
  setAvailable(10);
  setStalls(9'000'000, 9'000'000);
  event({.some = true, .full = true}, [this] { setStalls(9'000'001, 9'000'001); });
  event({.some = true}, [this] { setStalls(9'000'002, 9'000'001); });
  event({.full = true}, [this] { setStalls(9'000'003, 9'000'002); });
  EXPECT_THAT(run(), ElementsAre(warning, critical));
}

TEST_F(PressureWatchTest, WhatCannotBeComparedIsBelieved) {
  setAvailable(30);
  tree_.remove("proc/pressure");
  event({.some = true});
  EXPECT_THAT(run(), ElementsAre(warning));
}

TEST_F(PressureWatchTest, TellsOfTheReturnToNormalAfterAQuietRest) {
  setAvailable(30);
  event({.some = true});
  timeOut();
  timeOut();
  EXPECT_THAT(run(), ElementsAre(warning, normal));
}

TEST_F(PressureWatchTest, StaysUpWhileTheAverageIsNotCalm) {
  setAvailable(30);
  event({.some = true}, [this] { setStalls(200'000, 0, "5.00"); });
  timeOut();
  timeOut([this] { setStalls(0, 0, "4.99"); });
  EXPECT_THAT(run(), ElementsAre(warning, normal));
}

TEST_F(PressureWatchTest, NoticesMemoryThatRunsShortWithoutAnyNotification) {
  timeOut([this] { setAvailable(9); });
  timeOut();
  timeOut([this] { setAvailable(80); });
  EXPECT_THAT(run(), ElementsAre(warning, normal));
}

TEST_F(PressureWatchTest, DoesNotTellTheLevelAtTheStart) {
  setAvailable(9);
  timeOut();
  timeOut([this] { setAvailable(80); });
  EXPECT_THAT(run(), ElementsAre(normal)) << "but its end";
}

TEST_F(PressureWatchTest, LooksEveryTwoSecondsWhereNotificationsAreRefused) {
  events_.armed = false;
  setAvailable(30);
  timeOut([this] { setStalls(199'999, 0); });
  timeOut([this] { setStalls(399'999, 0); });
  timeOut([this] { setStalls(599'999, 0); });
  timeOut();
  EXPECT_THAT(run(), ElementsAre(warning, warning));
  EXPECT_THAT(events_.timeouts, Each(seconds(2)));
}

TEST_F(PressureWatchTest, AClockThatJumpsIsNoStall) {
  events_.armed = false;
  setAvailable(30);
  const auto jump = [this](seconds by, std::uint64_t micros) {
    events_.steps.emplace_back([this, by, micros](milliseconds /*timeout*/) {
      now_ += by;
      setStalls(micros, 0);
      return PressureWake{};
    });
  };
  jump(std::chrono::hours(8), 300'000);
  jump(seconds(0), 600'000);
  jump(-std::chrono::hours(8), 900'000);
  EXPECT_THAT(run(), IsEmpty());
  jump(seconds(2), 1'300'000);
  EXPECT_THAT(run(), ElementsAre(warning)) << "and is counted from there on";
}

TEST_F(PressureWatchTest, FullStallsCountWhereNotificationsAreRefused) {
  events_.armed = false;
  setAvailable(10);
  timeOut([this] { setStalls(500'000, 400'000); });
  EXPECT_THAT(run(), ElementsAre(critical));
}

TEST_F(PressureWatchTest, GoesOnWithLooksWhenTheNotificationsGetLost) {
  setAvailable(30);
  event({.lost = true}, [this] { setStalls(9'000'000, 0); });
  timeOut([this] { setStalls(9'100'000, 0); });
  timeOut([this] { setStalls(9'300'000, 0); });
  EXPECT_THAT(run(), ElementsAre(warning));
  EXPECT_THAT(events_.timeouts, ElementsAre(seconds(15), seconds(2), seconds(2), seconds(2)));
}

TEST_F(PressureWatchTest, WithoutStallInformationTheAvailableMemoryDecides) {
  events_.armed = false;
  tree_.remove("proc/pressure");
  timeOut([this] { setAvailable(9); });
  for (int look = 0; look < 7; ++look) timeOut([this] { setAvailable(50); });
  timeOut();
  EXPECT_THAT(run(), ElementsAre(warning, normal)) << "after 16 seconds";
}

TEST_F(PressureWatchTest, UnreadableMemoryLeavesTheLevelAsItIs) {
  setAvailable(30);
  event({.some = true});
  timeOut([this] { tree_.remove("proc/meminfo"); });
  event({.some = true, .full = true});
  EXPECT_THAT(run(), ElementsAre(warning, warning));
}

TEST_F(PressureWatchTest, NothingToReadIsNoPressure) {
  events_.armed = false;
  tree_.remove("proc");
  timeOut();
  EXPECT_THAT(run(), IsEmpty());
}

TEST_F(PressureWatchTest, TellsNothingOnceItIsCancelled) {
  setAvailable(30);
  event({.cancelled = true, .some = true});
  EXPECT_THAT(run(), IsEmpty());
}

}  // namespace
}  // namespace tarn
