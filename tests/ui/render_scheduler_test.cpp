// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/render_scheduler.hpp"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <memory>
#include <vector>

namespace tarn {
namespace {

TEST(RenderScheduler, RendersOncePerTurnAfterTheChangesThatWereAnnounced) {
  int value = 0;
  std::vector<int> rendered;
  RenderScheduler scheduler([&] { rendered.push_back(value); });
  scheduler.schedule();
  value = 1;
  scheduler.schedule();
  value = 2;
  EXPECT_TRUE(rendered.empty());
  QCoreApplication::processEvents();
  EXPECT_EQ(rendered, std::vector<int>{2});
  scheduler.schedule();
  value = 3;
  QCoreApplication::processEvents();
  EXPECT_EQ(rendered, (std::vector<int>{2, 3}));
  QCoreApplication::processEvents();
  EXPECT_EQ(rendered.size(), 2U);
}

TEST(RenderScheduler, DoesNotRepeatWhatWasRenderedMeanwhile) {
  int renderings = 0;
  RenderScheduler scheduler([&] { ++renderings; });
  scheduler.schedule();
  scheduler.renderNow();
  QCoreApplication::processEvents();
  EXPECT_EQ(renderings, 1);
  scheduler.schedule();
  scheduler.renderNow();
  scheduler.schedule();
  QCoreApplication::processEvents();
  EXPECT_EQ(renderings, 3);
}

TEST(RenderScheduler, SchedulesAnewForAChangeWhileItRenders) {
  int renderings = 0;
  std::unique_ptr<RenderScheduler> scheduler;
  scheduler = std::make_unique<RenderScheduler>([&] {
    if (++renderings == 1) scheduler->schedule();
  });
  scheduler->schedule();
  for (int turn = 0; turn < 3; ++turn) QCoreApplication::processEvents();
  EXPECT_EQ(renderings, 2);
}

TEST(RenderScheduler, RendersNothingOnceItIsGone) {
  int renderings = 0;
  {
    RenderScheduler scheduler([&] { ++renderings; });
    scheduler.schedule();
  }
  QCoreApplication::processEvents();
  EXPECT_EQ(renderings, 0);
}

}  // namespace
}  // namespace tarn
