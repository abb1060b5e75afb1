// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_placement.hpp"

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

constexpr QSize popover(320, 480);
const QRect whole(0, 0, 1920, 1080);
const ScreenArea topPanel{whole, whole.adjusted(0, 26, 0, 0)};
const ScreenArea bottomPanel{whole, whole.adjusted(0, 0, 0, -40)};
const ScreenArea leftPanel{whole, whole.adjusted(48, 0, 0, 0)};
const ScreenArea rightPanel{whole, whole.adjusted(0, 0, -48, 0)};
const ScreenArea noPanel{whole, whole};

TEST(PopoverFrame, IsCentredBelowAnItemInATopPanel) {
  const QRect frame = popoverFrame(QPoint(1200, 13), popover, topPanel);
  EXPECT_EQ(frame.size(), popover);
  EXPECT_EQ(frame.left(), 1200 - 160);
  EXPECT_GE(frame.top(), 26);
  EXPECT_LE(frame.top(), 26 + 24);
}

TEST(PopoverFrame, IsAboveABottomPanel) {
  const QRect frame = popoverFrame(QPoint(1200, 1060), popover, bottomPanel);
  EXPECT_EQ(frame.left(), 1200 - 160);
  EXPECT_LE(frame.bottom(), 1039);
  EXPECT_GE(frame.bottom(), 1039 - 24);
}

TEST(PopoverFrame, IsBesideAVerticalPanel) {
  const QRect besideLeft = popoverFrame(QPoint(24, 500), popover, leftPanel);
  EXPECT_GE(besideLeft.left(), 48);
  EXPECT_LE(besideLeft.left(), 48 + 24);
  EXPECT_EQ(besideLeft.top(), 500 - 240);
  const QRect besideRight = popoverFrame(QPoint(1900, 500), popover, rightPanel);
  EXPECT_LE(besideRight.right(), 1871);
  EXPECT_GE(besideRight.right(), 1871 - 24);
  EXPECT_EQ(besideRight.top(), 500 - 240);
}

TEST(BesidePanel, ReturnsTheScreenWithoutThePanel) {
  const auto available = [](const QRect& panel) { return besidePanel(noPanel, panel).available; };
  EXPECT_EQ(available(QRect(0, 0, 1920, 26)), topPanel.available);
  EXPECT_EQ(available(QRect(0, 1040, 1920, 40)), bottomPanel.available);
  EXPECT_EQ(available(QRect(0, 0, 48, 1080)), leftPanel.available);
  EXPECT_EQ(available(QRect(1872, 0, 48, 1080)), rightPanel.available);
  EXPECT_EQ(available(QRect(800, 4, 300, 26)), whole.adjusted(0, 30, 0, 0)) << "a floating panel";
  EXPECT_EQ(besidePanel(topPanel, QRect(0, 0, 1920, 20)).available, topPanel.available)
      << "the panel reserves more space than its window covers";
  EXPECT_EQ(besidePanel(noPanel, QRect(0, 0, 48, 1080)).whole, whole);
}

TEST(BesidePanel, ReturnsTheWholeScreenIfTheWindowIsNoPanel) {
  for (const QRect& window : {QRect(0, 0, 1920, 1080), QRect(100, 100, 600, 400), QRect(1920, 0, 1920, 26)}) {
    EXPECT_EQ(besidePanel(noPanel, window).available, whole);
  }
}

TEST(PopoverFrame, StaysUnderTheLastItemOfAPanel) {
  for (const int x : {8, 13, 1906, 1911}) {
    const QRect frame = popoverFrame(QPoint(x, 13), popover, topPanel);
    EXPECT_TRUE(frame.left() <= x && x <= frame.right()) << frame.left();
    EXPECT_TRUE(topPanel.available.contains(frame));
  }
}

TEST(PopoverFrame, StaysBesideTheLastItemOfAVerticalPanel) {
  for (const int y : {20, 24, 1056, 1060}) {
    const QRect frame = popoverFrame(QPoint(1896, y), popover, rightPanel);
    EXPECT_TRUE(frame.top() <= y && y <= frame.bottom()) << frame.top();
    EXPECT_TRUE(rightPanel.available.contains(frame));
  }
}

TEST(PopoverFrame, AssumesAHorizontalPanelInACorner) {
  const QRect frame = popoverFrame(QPoint(1908, 14), popover, noPanel);
  EXPECT_TRUE(frame.left() <= 1908 && 1908 <= frame.right()) << frame.left();
  EXPECT_GT(frame.top(), 14 + 10);
}

TEST(PopoverFrame, StaysInsideTheScreenInItsCorners) {
  for (const ScreenArea& screen : {topPanel, bottomPanel, leftPanel, rightPanel, noPanel}) {
    for (const QPoint& corner :
         {whole.topLeft(), whole.topRight(), whole.bottomLeft(), whole.bottomRight()}) {
      const QRect frame = popoverFrame(corner, popover, screen);
      EXPECT_EQ(frame.size(), popover);
      EXPECT_TRUE(screen.available.contains(frame)) << frame.x() << ' ' << frame.y();
    }
  }
}

TEST(PopoverFrame, DoesNotCoverAnItemWhosePanelReservesNoSpace) {
  EXPECT_FALSE(popoverFrame(QPoint(960, 12), popover, noPanel).contains(960, 12 + 10));
  EXPECT_FALSE(popoverFrame(QPoint(960, 1068), popover, noPanel).contains(960, 1068 - 10));
  EXPECT_FALSE(popoverFrame(QPoint(12, 500), popover, noPanel).contains(12 + 10, 500));
  EXPECT_FALSE(popoverFrame(QPoint(1908, 500), popover, noPanel).contains(1908 - 10, 500));
}

TEST(PopoverFrame, IsInTheTopRightCornerWithoutAnAnchor) {
  const QRect frame = popoverFrame(std::nullopt, popover, topPanel);
  EXPECT_TRUE(topPanel.available.contains(frame));
  EXPECT_LE(frame.top(), 26 + 12);
  EXPECT_GE(frame.right(), 1919 - 12);
}

TEST(PopoverFrame, StaysOnTheScreenOfItsAnchor) {
  const QRect second(1920, 200, 1280, 1024);
  const ScreenArea screen{second, second.adjusted(0, 30, 0, 0)};
  const QRect frame = popoverFrame(QPoint(1925, 210), popover, screen);
  EXPECT_TRUE(screen.available.contains(frame));
  EXPECT_TRUE(screen.available.contains(popoverFrame(std::nullopt, popover, screen)));
  const QRect left(-1280, -300, 1280, 1024);
  EXPECT_TRUE(left.contains(popoverFrame(QPoint(-5, -295), popover, {left, left})));
}

TEST(PopoverFrame, ShowsItsTopLeftOnAScreenThatIsTooSmall) {
  const QRect tiny(0, 0, 200, 150);
  const QRect frame = popoverFrame(QPoint(190, 5), popover, {tiny, tiny});
  EXPECT_EQ(frame.size(), popover);
  EXPECT_TRUE(tiny.contains(frame.topLeft()));
  EXPECT_LT(frame.left(), 20);
  EXPECT_LT(frame.top(), 20);
}

TEST(PopoverHeightLimit, LeavesAGapAndIsNeverNegative) {
  EXPECT_LT(popoverHeightLimit(topPanel), topPanel.available.height());
  EXPECT_GT(popoverHeightLimit(topPanel), topPanel.available.height() - 30);
  EXPECT_GE(popoverHeightLimit({QRect(0, 0, 5, 5), QRect(0, 0, 5, 5)}), 0);
  EXPECT_GE(popoverHeightLimit({}), 0);
}

TEST(PopoverHeightLimit, KeepsTheTallestPopoverInsideTheScreen) {
  const QSize tallest(320, popoverHeightLimit(topPanel));
  EXPECT_TRUE(topPanel.available.contains(popoverFrame(QPoint(1200, 13), tallest, topPanel)));
  EXPECT_TRUE(bottomPanel.available.contains(
      popoverFrame(QPoint(1200, 1060), QSize(320, popoverHeightLimit(bottomPanel)), bottomPanel)));
}

TEST(PlausibleAnchor, IsAcceptedNearAnEdgeOfTheScreen) {
  for (const QPoint& point : {QPoint(1200, 13), QPoint(1200, 1060), QPoint(24, 500), QPoint(1900, 500),
                              QPoint(0, 0), QPoint(1919, 1079)}) {
    EXPECT_TRUE(isPlausibleAnchor(point, topPanel)) << point.x() << ' ' << point.y();
  }
}

TEST(PlausibleAnchor, IsRejectedInTheMiddleOfAndOutsideTheScreen) {
  for (const QPoint& point : {QPoint(960, 540), QPoint(400, 300), QPoint(-1, 10), QPoint(1920, 10),
                              QPoint(10, -1), QPoint(10, 1080), QPoint(1 << 30, -(1 << 30))}) {
    EXPECT_FALSE(isPlausibleAnchor(point, topPanel)) << point.x() << ' ' << point.y();
  }
  EXPECT_FALSE(isPlausibleAnchor(QPoint(0, 0), {}));
}

constexpr int shadow = 28;  // width of the shadow around the popover; its gap to panel and screen edge is 6
constexpr WindowCapabilities wayland{.clientsPlaceWindows = false, .blendsWindows = true};

class CompositorPlacementTest : public ::testing::Test {
 protected:
  CompositorPlacementTest()
      : window_((fixture_.makeView(), fixture_.view.release()), std::make_unique<FakeCompositor>(*this),
                [this] { return now_; }) {}

  ~CompositorPlacementTest() override {
    window_.close();
    PopoverFixture::settle();
  }

  class FakeCompositor final : public CompositorPlacement {
   public:
    explicit FakeCompositor(CompositorPlacementTest& test) : test_(test) {}

    std::optional<CompositorPlace> locate() override {
      ++test_.requests_;
      return test_.requests_ > test_.unlistedRequests_ ? std::optional(test_.place_) : std::nullopt;
    }

    void moveTo(const QPoint& corner) override { test_.corners_.push_back(corner); }

   private:
    CompositorPlacementTest& test_;
  };

  void waitForRequests(int count) {
    while (requests_ < count) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    PopoverFixture::settle();
  }

  std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
  int requests_ = 0;
  int unlistedRequests_ = 2;  ///< number of first requests in which the compositor does not list the window
  CompositorPlace place_{{QRect(0, 0, 1920, 1080), QRect(0, 30, 1920, 1050)}, QPoint(1000, 0)};
  std::vector<QPoint> corners_;
  PopoverFixture fixture_;
  PopoverWindow window_;
};

TEST_F(CompositorPlacementTest, MovesThePopoverBelowTheItemWhenTheWindowIsListed) {
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForRequests(3);
  ASSERT_EQ(corners_.size(), 1U);
  EXPECT_EQ(corners_.front(), QPoint(1000 - 160 - shadow, 36 - shadow)) << "the corner of the shadow";
  EXPECT_EQ(requests_, 3);
}

TEST_F(CompositorPlacementTest, MovesThePopoverToTheCornerIfItWasNotOpenedByAClick) {
  window_.open(PopoverStyle::tool, {}, wayland);
  waitForRequests(3);
  ASSERT_EQ(corners_.size(), 1U);
  EXPECT_EQ(corners_.front(), QPoint(1920 - 6 - 320 - shadow, 36 - shadow));
}

TEST_F(CompositorPlacementTest, MovesThePopoverToTheCornerIfThePointerIsNotNearAnEdge) {
  place_.pointer = QPoint(900, 500);
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForRequests(3);
  ASSERT_EQ(corners_.size(), 1U);
  EXPECT_EQ(corners_.front(), QPoint(1920 - 6 - 320 - shadow, 36 - shadow));
}

TEST_F(CompositorPlacementTest, MovesAPopoverAboveAPanelWhenItGrows) {
  place_ = {{QRect(0, 0, 1920, 1080), QRect(0, 0, 1920, 1050)}, QPoint(1000, 1079)};
  fixture_.add({"Editor.app", 100, {2 * megabyte, megabyte}});
  fixture_.sweep();
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForRequests(3);
  click(*rowNamed(window_, "Editor")->button());
  ASSERT_EQ(corners_.size(), 2U);
  EXPECT_EQ(corners_.back(), corners_.front() - QPoint(0, 2 * (2 + 14)));
  EXPECT_EQ(corners_.back().y() + window_.height() - shadow, 1050 - 6);
}

TEST_F(CompositorPlacementTest, LimitsThePopoverToTheHeightOfItsScreen) {
  place_.screen = {QRect(0, 0, 800, 330), QRect(0, 30, 800, 300)};
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForRequests(3);
  for (int i = 0; i < 8; ++i) fixture_.add({"App" + std::to_string(i) + ".app", 100 + i, {megabyte}});
  fixture_.sweep();
  EXPECT_EQ(window_.height(), 300 - 2 * 6 + 2 * shadow);
}

TEST_F(CompositorPlacementTest, EndsItsRequestsIfTheWindowIsNeverListed) {
  unlistedRequests_ = 1'000'000;
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForRequests(75);
  EXPECT_TRUE(window_.isVisible());
  EXPECT_TRUE(corners_.empty());
}

TEST_F(CompositorPlacementTest, IsRequestedAtEachOpening) {
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForRequests(3);
  window_.close();
  now_ += std::chrono::seconds(1);
  place_.pointer = QPoint(600, 0);
  window_.toggle(PopoverStyle::tool, {}, wayland);
  waitForRequests(4);
  ASSERT_EQ(corners_.size(), 2U);
  EXPECT_EQ(corners_.back().x(), 600 - 160 - shadow);
}

TEST_F(CompositorPlacementTest, IsNotRequestedForARegularWindow) {
  window_.open(PopoverStyle::regular, {}, wayland);
  PopoverFixture::settle();
  EXPECT_EQ(requests_, 0);
}

}  // namespace
}  // namespace tarn
