// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Everything above the contracts works where the system tells nothing.

#include <gmock/gmock.h>

#include "extras/extras_reader.hpp"
#include "monitor/active_processors.hpp"
#include "monitor/monitor_view_model.hpp"
#include "support/stepped_queue.hpp"
#include "support/stepped_run_loop.hpp"

namespace tarn {
namespace {

using testing::IsEmpty;

TEST(NeutralPort, GivesASnapshotWithoutProcesses) {
  MemorySampler sampler(platformSamplerPort());
  for (int sweep = 0; sweep < 2; ++sweep) {
    const MemorySnapshot snapshot = sampler.sample();
    EXPECT_THAT(snapshot.groups, IsEmpty());
    EXPECT_EQ(snapshot.attributedTotal(), 0U);
    EXPECT_EQ(snapshot.totalCPUPercent(), 0);
    EXPECT_EQ(snapshot.system, SystemMemory{});
  }
}

TEST(NeutralPort, GivesExtrasThatAreAbsent) {
  const ExtrasReader reader(platformExtrasPort());
  EXPECT_EQ(reader.read(), SystemExtras{});
  EXPECT_EQ(thermalPhrase(reader.thermalState()), "Temperature unknown");
}

TEST(NeutralPort, LetsTheMonitorRun) {
  SteppedRunLoop mainLoop;
  SteppedQueues queues;
  const auto model =
      MonitorViewModel::create({.mainLoop = mainLoop,
                                .makeQueue = [&](const std::string& label) { return queues.make(label); },
                                .sampler = platformSamplerPort(),
                                .extras = platformExtrasPort(),
                                .pressureLevel = platformPressureLevel,
                                .pressureSource = platformPressureSource(),
                                .frontmostApplication = [] { return std::nullopt; },
                                .activeProcessorCount = platformActiveProcessorCount});
  model->popoverOpened();
  for (int sweep = 0; sweep < 2; ++sweep) {
    queues["com.tarn.sampler"].runAll();
    mainLoop.tasks.runAll();
    mainLoop.advance(3);
    mainLoop.tasks.runAll();
  }
  queues["com.tarn.sampler"].runAll();
  mainLoop.tasks.runAll();
  EXPECT_TRUE(model->snapshot());
  EXPECT_TRUE(model->extras());
  EXPECT_EQ(model->presentation(), (StatusPresentation{MemoryPressure::normal, 0}));
  EXPECT_EQ(model->cpuPresentation().sentence(), "Your Mac's processor is mostly idle.");
  EXPECT_EQ(model->frontmostFootprint(), std::nullopt);
}

}  // namespace
}  // namespace tarn
