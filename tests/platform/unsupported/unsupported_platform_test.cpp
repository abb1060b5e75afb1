// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The shared code works on a platform whose functions all return their neutral value.

#include "platform/unsupported/unsupported_platform.hpp"

#include <gmock/gmock.h>

#include <QCoreApplication>

#include "extras/extras_reader.hpp"
#include "monitor/monitor_view_model.hpp"
#include "support/stepped_run_loop.hpp"

namespace tarn {
namespace {

using testing::IsEmpty;

TEST(UnsupportedPlatform, ReturnsASnapshotWithoutProcesses) {
  MemorySampler sampler(UnsupportedPlatform().makeSamplerPort());
  for (int sweep = 0; sweep < 2; ++sweep) {
    const MemorySnapshot snapshot = sampler.sample();
    EXPECT_THAT(snapshot.groups, IsEmpty());
    EXPECT_EQ(snapshot.attributedTotal(), 0U);
    EXPECT_EQ(snapshot.totalCPUPercent(), 0);
    EXPECT_EQ(snapshot.system, SystemMemory{});
  }
}

TEST(UnsupportedPlatform, ReturnsNoExtras) {
  const ExtrasReader reader(UnsupportedPlatform().makeExtrasPort());
  EXPECT_EQ(reader.read(), SystemExtras{});
  EXPECT_EQ(thermalPhrase(reader.thermalState()), "Temperature unknown");
}

TEST(UnsupportedPlatform, MonitorRuns) {
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

TEST(UnsupportedPlatform, ReturnsNeutralValuesBeforeTheApplicationExists) {
  UnsupportedPlatform platform;
  platform.limitAllocatorArenas();
  EXPECT_EQ(platform.version(), std::nullopt);
  EXPECT_EQ(platform.displayProblem(), std::nullopt);
}

TEST(UnsupportedPlatform, AcceptsEveryClaimOfAnInstance) {
  UnsupportedPlatform platform;
  EXPECT_TRUE(platform.makeSingleInstance()->claim([] { FAIL(); }));
  EXPECT_TRUE(platform.makeSingleInstance()->claim([] { FAIL(); }));
}

TEST(UnsupportedPlatform, ReturnsNeutralValues) {
  UnsupportedPlatform platform;
  EXPECT_EQ(platform.watchTerminationSignals(), nullptr);
  EXPECT_EQ(platform.watchWorkspaces([] { FAIL(); }), nullptr);
  EXPECT_EQ(platform.makeCompositorPlacement(), nullptr);
  EXPECT_EQ(platform.makeColorSchemeWatcher()->preference(), std::nullopt);
  EXPECT_FALSE(platform.makeFrontmostApplicationSource()());
  EXPECT_EQ(platform.pressureLevel(), std::nullopt);
  EXPECT_EQ(platform.activeProcessorCount(), 1);
  EXPECT_TRUE(platform.makeFileIconLoader()("/nowhere").isNull());
}

TEST(UnsupportedPlatform, ReportsTheMissingHostFromTheEventLoop) {
  UnsupportedPlatform platform;
  const std::unique_ptr<MenuBarItem> item = platform.makeMenuBarItem();
  int missing = 0;
  QObject::connect(item.get(), &MenuBarItem::hostMissing, [&missing] { ++missing; });
  item->show({});
  EXPECT_EQ(missing, 0);
  QCoreApplication::processEvents();
  EXPECT_EQ(missing, 1);
}

TEST(UnsupportedPlatform, FormatsFiguresWithIcu) {
  const Formatters formatters = UnsupportedPlatform().formatters();
  EXPECT_EQ(formatters.bytes.string(1024), "1 KB");
  EXPECT_EQ(formatters.percents.string(0.5), "50%");
}

}  // namespace
}  // namespace tarn
