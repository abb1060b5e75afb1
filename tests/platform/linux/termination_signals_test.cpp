// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/termination_signals.hpp"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <csignal>
#include <thread>

namespace tarn {
namespace {

class TerminationSignalsTest : public ::testing::TestWithParam<int> {};

TEST_P(TerminationSignalsTest, CallsTheFunctionOnTheMainThread) {
  int calls = 0;
  const std::thread::id main = std::this_thread::get_id();
  const TerminationSignals signals([&] {
    ++calls;
    EXPECT_EQ(std::this_thread::get_id(), main);
  });
  std::raise(GetParam());
  EXPECT_EQ(calls, 0) << "the signal handler does not call the function";
  QCoreApplication::processEvents();
  EXPECT_EQ(calls, 1);
  std::raise(GetParam());
  std::raise(GetParam());
  QCoreApplication::processEvents();
  EXPECT_EQ(calls, 2) << "several signals in one event-loop iteration cause one call";
}

TEST_P(TerminationSignalsTest, RestoresTheDefaultActionWhenDestroyed) {
  {
    const TerminationSignals signals([] {});
  }
  EXPECT_EXIT(std::raise(GetParam()), testing::KilledBySignal(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(Signals, TerminationSignalsTest, testing::Values(SIGTERM, SIGINT, SIGHUP));

}  // namespace
}  // namespace tarn
