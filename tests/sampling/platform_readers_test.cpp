// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "sampling/process_source.hpp"
#include "support/fake_machine.hpp"

namespace tarn {
namespace {

TEST(ProcScanFootprint, IsTheOneInTheUsage) {
  FakeMachine machine;
  machine.processes = {{.pid = 7, .usage = ProcessUsage{.footprint = 4096, .cpuTime = 12}}};
  EXPECT_EQ(FakeProcScan(machine).footprint(7), 4096U);
}

TEST(ProcScanFootprint, IsAbsentWhereTheUsageIsRefused) {
  FakeMachine machine;
  machine.processes = {{.pid = 7, .usage = std::nullopt}};
  EXPECT_EQ(FakeProcScan(machine).footprint(7), std::nullopt);
}

}  // namespace
}  // namespace tarn
