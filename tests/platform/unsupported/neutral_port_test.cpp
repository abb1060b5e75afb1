// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The shared code works on a platform whose functions all return their neutral value.

#include <gmock/gmock.h>

#include "extras/extras_reader.hpp"
#include "monitor/monitor_view_model.hpp"
#include "platform/unsupported/unsupported_platform.hpp"
#include "support/stepped_run_loop.hpp"

namespace tarn {
namespace {

using testing::IsEmpty;

TEST(NeutralPort, GivesASnapshotWithoutProcesses) {
  MemorySampler sampler(UnsupportedPlatform().makeSamplerPort());
  for (int sweep = 0; sweep < 2; ++sweep) {
    const MemorySnapshot snapshot = sampler.sample();
    EXPECT_THAT(snapshot.groups, IsEmpty());
    EXPECT_EQ(snapshot.attributedTotal(), 0U);
    EXPECT_EQ(snapshot.totalCPUPercent(), 0);
    EXPECT_EQ(snapshot.system, SystemMemory{});
  }
}

TEST(NeutralPort, GivesExtrasThatAreAbsent) {
  const ExtrasReader reader(UnsupportedPlatform().makeExtrasPort());
  EXPECT_EQ(reader.read(), SystemExtras{});
  EXPECT_EQ(thermalPhrase(reader.thermalState()), "Temperature unknown");
}

TEST(NeutralPort, LetsTheMonitorRun) {
  UnsupportedPlatform platform;
  SteppedRunLoop mainLoop;
  SteppedQueues queues;
  const auto model =
      MonitorViewModel::create({.mainLoop = mainLoop,
                                .makeQueue = [&](const std::string& label) { return queues.make(label); },
                                .sampler = platform.makeSamplerPort(),
                                .extras = platform.makeExtrasPort(),
                                .pressureLevel = [&] { return platform.pressureLevel(); },
                                .pressureSource = platform.makePressureSource(),
                                .frontmostApplication = platform.makeFrontmostApplicationSource(),
                                .activeProcessorCount = [&] { return platform.activeProcessorCount(); }});
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
