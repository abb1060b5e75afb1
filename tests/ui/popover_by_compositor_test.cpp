// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The popover where only the compositor places windows.

#include <gtest/gtest.h>

#include <QApplication>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ui/popover/popover_window.hpp"
#include "ui/popover_fixture.hpp"

namespace tarn {
namespace {

constexpr int shadow = 28;
constexpr WindowCapabilities wayland{.clientsPlaceWindows = false, .blendsWindows = true};

class PopoverByCompositorTest : public ::testing::Test {
 protected:
  PopoverByCompositorTest()
      : window_((stage_.makeView(), stage_.view.release()), std::make_unique<FakeCompositor>(*this),
                [this] { return now_; }) {}

  ~PopoverByCompositorTest() override {
    window_.close();
    PopoverStage::settle();
  }

  class FakeCompositor final : public CompositorPlacement {
   public:
    explicit FakeCompositor(PopoverByCompositorTest& test) : test_(test) {}

    std::optional<CompositorPlace> locate() override {
      ++test_.questions_;
      return test_.questions_ > test_.unknownFor_ ? std::optional(test_.place_) : std::nullopt;
    }

    void moveTo(const QPoint& corner) override { test_.corners_.push_back(corner); }

   private:
    PopoverByCompositorTest& test_;
  };

  void waitForQuestions(int count) {
    while (questions_ < count) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    PopoverStage::settle();
  }

  std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
  int questions_ = 0;
  int unknownFor_ = 2;  ///< questions for which the compositor does not know the window
  CompositorPlace place_{{QRect(0, 0, 1920, 1080), QRect(0, 30, 1920, 1050)}, QPoint(1000, 0)};
  std::vector<QPoint> corners_;
  PopoverStage stage_;
  PopoverWindow window_;
};

TEST_F(PopoverByCompositorTest, IsMovedBelowTheItemOnceTheCompositorKnowsIt) {
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForQuestions(3);
  ASSERT_EQ(corners_.size(), 1U);
  EXPECT_EQ(corners_.front(), QPoint(1000 - 160 - shadow, 36 - shadow)) << "with the shadow around it";
  EXPECT_EQ(questions_, 3);
}

TEST_F(PopoverByCompositorTest, IsMovedToTheCornerWhenNobodyClickedOnTheItem) {
  window_.open(PopoverStyle::tool, {}, wayland);
  waitForQuestions(3);
  ASSERT_EQ(corners_.size(), 1U);
  EXPECT_EQ(corners_.front(), QPoint(1920 - 6 - 320 - shadow, 36 - shadow));
}

TEST_F(PopoverByCompositorTest, IsMovedToTheCornerWhenThePointerIsNotNearAPanel) {
  place_.pointer = QPoint(900, 500);
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForQuestions(3);
  ASSERT_EQ(corners_.size(), 1U);
  EXPECT_EQ(corners_.front(), QPoint(1920 - 6 - 320 - shadow, 36 - shadow));
}

TEST_F(PopoverByCompositorTest, KeepsItsDistanceFromAPanelBelowItWhenItGrows) {
  place_ = {{QRect(0, 0, 1920, 1080), QRect(0, 0, 1920, 1050)}, QPoint(1000, 1079)};
  stage_.add({"Editor.app", 100, {2 * megabyte, megabyte}});
  stage_.sweep();
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForQuestions(3);
  click(*rowNamed(window_, "Editor")->button());
  ASSERT_EQ(corners_.size(), 2U);
  EXPECT_EQ(corners_.back(), corners_.front() - QPoint(0, 2 * (2 + 14)));
  EXPECT_EQ(corners_.back().y() + window_.height() - shadow, 1050 - 6);
}

TEST_F(PopoverByCompositorTest, IsNoHigherThanTheCompositorsScreen) {
  place_.screen = {QRect(0, 0, 800, 330), QRect(0, 30, 800, 300)};
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForQuestions(3);
  for (int i = 0; i < 8; ++i) stage_.add({"App" + std::to_string(i) + ".app", 100 + i, {megabyte}});
  stage_.sweep();
  EXPECT_EQ(window_.height(), 300 - 2 * 6 + 2 * shadow);
}

TEST_F(PopoverByCompositorTest, StaysWhereItIsWhenTheCompositorNeverKnowsIt) {
  unknownFor_ = 1'000'000;
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForQuestions(75);
  EXPECT_TRUE(window_.isVisible());
  EXPECT_TRUE(corners_.empty());
}

TEST_F(PopoverByCompositorTest, IsAskedForAnewWithEachOpening) {
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForQuestions(3);
  window_.close();
  now_ += std::chrono::seconds(1);
  place_.pointer = QPoint(600, 0);
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForQuestions(4);
  ASSERT_EQ(corners_.size(), 2U);
  EXPECT_EQ(corners_.back().x(), 600 - 160 - shadow);
}

TEST_F(PopoverByCompositorTest, IsAnOrdinaryWindowsOwnBusiness) {
  window_.open(PopoverStyle::regular, {}, wayland);
  PopoverStage::settle();
  EXPECT_EQ(questions_, 0);
}

}  // namespace
}  // namespace tarn
