// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_window.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLayout>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QWindow>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ui/popover/tab_picker.hpp"
#include "ui/popover_fixture.hpp"

namespace tarn {
namespace {

using namespace std::chrono_literals;

const QPoint item(400, 10);
const WindowCapabilities plain{.clientsPlaceWindows = true, .blendsWindows = false};
const WindowCapabilities blending{.clientsPlaceWindows = true, .blendsWindows = true};

class PopoverWindowTest : public ::testing::Test {
 protected:
  PopoverWindowTest()
      : view_((fixture_.makeView(), fixture_.view.release())),
        window_(view_, nullptr, [this] { return now_; }) {
    window_.setTheme(Theme::light());
  }

  ~PopoverWindowTest() override {
    window_.close();
    PopoverFixture::settle();
  }

  void open(PopoverStyle style, const PopoverGeometry& geometry = {item},
            const WindowCapabilities& capabilities = plain) {
    window_.open(style, geometry, capabilities);
    PopoverFixture::settle();
  }

  void toggle(std::optional<QPoint> anchor = item, PopoverStyle style = PopoverStyle::popup) {
    window_.toggle(style, {anchor}, plain);
    PopoverFixture::settle();
  }

  /// Presses at a screen position. The window receives the press, as a popup with a grab does.
  void press(const QPoint& onScreen) {
    QMouseEvent event(QEvent::MouseButtonPress, QPointF(window_.mapFromGlobal(onScreen)), QPointF(onScreen),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window_, &event);
    PopoverFixture::settle();
  }

  /// Adds and expands applications that need more height than the screen has.
  void fillBeyondTheScreen() {
    for (int i = 0; i < 8; ++i) {
      fixture_.add(
          {"App" + std::to_string(i) + ".app", 1000 + 100 * i, std::vector<std::uint64_t>(20, megabyte)});
    }
    fixture_.sweep();
    for (AppRow* row : shownRows(window_)) click(*row->button());
  }

  std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
  PopoverFixture fixture_;
  PopoverView* view_;  ///< owned by the window
  PopoverWindow window_;
};

TEST_F(PopoverWindowTest, HasTheSameFrameAsAPopupAndAsATool) {
  open(PopoverStyle::popup);
  const QRect asPopup = window_.geometry();
  window_.close();
  open(PopoverStyle::tool, {item}, {.clientsPlaceWindows = true, .popupsTakeKeys = false});
  EXPECT_EQ(window_.geometry(), asPopup);
}

TEST_F(PopoverWindowTest, IsAsWideAsItsViewAndAsHighAsItsContent) {
  open(PopoverStyle::popup);
  EXPECT_EQ(window_.width(), 320);
  EXPECT_EQ(view_->size(), window_.size());
  EXPECT_EQ(window_.height(), view_->layout()->totalHeightForWidth(320));
}

TEST_F(PopoverWindowTest, HasItsFinalHeightWhenItIsShown) {
  for (const char* name : {"One.app", "Two.app", "Three.app"})
    fixture_.add({name, 100, {megabyte, megabyte}});
  fixture_.sweep();
  for (const PopoverStyle style : {PopoverStyle::popup, PopoverStyle::tool}) {
    window_.open(style, {item}, plain);
    const int first = window_.height();
    PopoverFixture::settle();
    EXPECT_EQ(window_.height(), first);
    window_.close();
  }
}

TEST_F(PopoverWindowTest, GrowsAndShrinksWithItsContent) {
  fixture_.add({"Editor.app", 100, {2 * megabyte, megabyte}});
  fixture_.sweep();
  open(PopoverStyle::popup);
  const int closed = window_.height();
  AppRow* row = rowNamed(window_, "Editor");
  click(*row->button());
  EXPECT_EQ(window_.height(), closed + 2 * (2 + 14));  // two process lines: spacing 2, height 14
  click(*row->button());
  EXPECT_EQ(window_.height(), closed);
}

TEST_F(PopoverWindowTest, OpensBelowItsItemInsideTheScreen) {
  open(PopoverStyle::popup);
  const QRect screen = window_.screen()->availableGeometry();
  EXPECT_TRUE(screen.contains(window_.geometry()));
  EXPECT_EQ(window_.geometry().left(), item.x() - 160);
  EXPECT_GT(window_.geometry().top(), item.y());
}

TEST_F(PopoverWindowTest, OpensBesideThePanelUnderThePointer) {
  open(PopoverStyle::popup, {QPoint(30, 10), QRect(0, 0, 60, 700)});
  EXPECT_EQ(window_.geometry().topLeft(), QPoint(66, 6));
  window_.close();
  open(PopoverStyle::popup, {QPoint(30, 10), QRect(0, 600, 60, 100)});
  EXPECT_EQ(window_.geometry().left(), 6) << "the window does not contain the item";
}

TEST_F(PopoverWindowTest, HasMarginsForItsShadowIfWindowsAreBlended) {
  open(PopoverStyle::popup, {item}, blending);
  EXPECT_GT(window_.width(), 320);
  EXPECT_EQ(view_->width(), 320);
  EXPECT_TRUE(window_.testAttribute(Qt::WA_TranslucentBackground));
  EXPECT_TRUE(window_.windowHandle()->mask().isEmpty());
  window_.close();
  open(PopoverStyle::popup, {item}, plain);
  EXPECT_EQ(window_.width(), 320);
  EXPECT_FALSE(window_.testAttribute(Qt::WA_TranslucentBackground));
}

TEST_F(PopoverWindowTest, MasksItsCornersUnlessItIsARegularWindow) {
  for (const PopoverStyle style : {PopoverStyle::popup, PopoverStyle::tool}) {
    open(style);
    EXPECT_FALSE(window_.windowHandle()->mask().isEmpty());
    EXPECT_FALSE(window_.windowHandle()->mask().contains(QPoint(0, 0)));
    EXPECT_TRUE(window_.windowHandle()->mask().contains(window_.rect().center()));
    window_.close();
  }
  open(PopoverStyle::regular);
  EXPECT_TRUE(window_.windowHandle()->mask().isEmpty());
}

TEST_F(PopoverWindowTest, ClosesOnEscapeUnlessItIsARegularWindow) {
  const QSignalSpy closings(&window_, &PopoverWindow::closed);
  open(PopoverStyle::popup);
  pressKey(window_, Qt::Key_Escape);
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(closings.count(), 1);
  open(PopoverStyle::tool);
  pressKey(*view_, Qt::Key_Escape);
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(closings.count(), 2);
  open(PopoverStyle::regular);
  pressKey(window_, Qt::Key_Escape);
  EXPECT_TRUE(window_.isVisible());
  window_.close();
  EXPECT_EQ(closings.count(), 3);
}

TEST_F(PopoverWindowTest, ClosesOnlyOnAPressOutside) {
  open(PopoverStyle::popup);
  press(window_.geometry().center());
  EXPECT_TRUE(window_.isVisible());
  press(window_.geometry().bottomRight() + QPoint(40, 40));
  EXPECT_FALSE(window_.isVisible());
}

TEST_F(PopoverWindowTest, ClosesOnAPressOnItsShadow) {
  open(PopoverStyle::popup, {item}, blending);
  press(window_.geometry().topLeft() + QPoint(2, 2));
  EXPECT_FALSE(window_.isVisible());
}

TEST_F(PopoverWindowTest, ClosesOnASecondClick) {
  toggle();
  EXPECT_TRUE(window_.isVisible());
  toggle();
  EXPECT_FALSE(window_.isVisible());
  toggle();
  EXPECT_TRUE(window_.isVisible());
}

TEST_F(PopoverWindowTest, IsNotReopenedByTheReleaseOfThePressThatClosedIt) {
  toggle();
  press(item);
  ASSERT_FALSE(window_.isVisible());
  now_ += 125ms;
  toggle(item + QPoint(3, 2));
  EXPECT_FALSE(window_.isVisible());
  now_ += 10ms;
  toggle();
  EXPECT_TRUE(window_.isVisible()) << "only one click is ignored";
}

TEST_F(PopoverWindowTest, IsNotReopenedIfTheHostReportsNoPosition) {
  toggle(std::nullopt);
  press(item);
  now_ += 399ms;
  toggle(std::nullopt);
  EXPECT_FALSE(window_.isVisible());
}

TEST_F(PopoverWindowTest, IsReopenedByALaterClick) {
  toggle();
  press(item);
  now_ += 400ms;
  toggle();
  EXPECT_TRUE(window_.isVisible());
}

TEST_F(PopoverWindowTest, IsReopenedByAClickFarFromThePressThatClosedIt) {
  toggle();
  press(QPoint(20, 700));
  ASSERT_FALSE(window_.isVisible());
  now_ += 125ms;
  toggle();
  EXPECT_TRUE(window_.isVisible());
}

TEST_F(PopoverWindowTest, ScrollsTheListOnALowScreenAndKeepsTheFooterVisible) {
  open(PopoverStyle::popup);
  fillBeyondTheScreen();
  const QRect screen = window_.screen()->availableGeometry();
  EXPECT_TRUE(screen.contains(window_.geometry()));
  EXPECT_GT(view_->layout()->totalHeightForWidth(320), screen.height());
  const QRect footer = frameIn(window_, *window_.findChild<PopoverFooter*>());
  EXPECT_TRUE(window_.rect().contains(footer));
  EXPECT_EQ(window_.height() - footer.bottom() - 1, 14);
  const auto* scroller = window_.findChild<ApplicationListScroller*>();
  EXPECT_TRUE(scroller->verticalScrollBar()->isVisible());
  EXPECT_GT(scroller->verticalScrollBar()->maximum(), 0);
  EXPECT_EQ(window_.width(), 320);
  for (const AppRow* row : shownRows(window_)) {
    const QRect figure = frameIn(window_, *row->button()->findChild<FigureLabel*>());
    EXPECT_EQ(figure.right(), 305 - 18) << "the scroll bar does not cover the rows";
    EXPECT_LE(frameIn(window_, *row).right(), frameIn(window_, *scroller->verticalScrollBar()).left());
  }
}

TEST_F(PopoverWindowTest, ScrollsToTheRowThatGetsTheFocus) {
  open(PopoverStyle::popup);
  fillBeyondTheScreen();
  auto* scroller = window_.findChild<ApplicationListScroller*>();
  auto* last = shownRows(window_).back()->button();
  QWidget* before = shownRows(window_)[6]->button();
  scroller->verticalScrollBar()->setValue(0);
  before->setFocus(Qt::TabFocusReason);
  pressKey(*before, Qt::Key_Tab);
  ASSERT_TRUE(last->hasFocus());
  const QRect shown = frameIn(*scroller->viewport(), *last);
  EXPECT_TRUE(scroller->viewport()->rect().contains(shown)) << shown.y();
}

TEST_F(PopoverWindowTest, AppliesAThemeWhileItIsOpen) {
  fixture_.add({"Editor.app", 100, {megabyte}});
  fixture_.sweep();
  open(PopoverStyle::popup);
  for (const Theme* theme : {&Theme::dark(), &Theme::light()}) {
    window_.setTheme(*theme);
    PopoverFixture::settle();
    const QLabel* name = labelsOf(*rowNamed(window_, "Editor")).front();
    EXPECT_EQ(name->palette().color(name->foregroundRole()), theme->primary);
    EXPECT_EQ(window_.grab().toImage().pixelColor(160, 6), theme->background);
  }
}

TEST_F(PopoverWindowTest, ShowsNoFocusRingWhenItOpens) {
  fixture_.add({"Editor.app", 100, {megabyte}});
  fixture_.sweep();
  open(PopoverStyle::popup);
  EXPECT_TRUE(window_.hasFocus());
  pressKey(*QApplication::focusWidget(), Qt::Key_Tab);
  ASSERT_NE(QApplication::focusWidget(), nullptr);
  EXPECT_NE(qobject_cast<TabSegment*>(QApplication::focusWidget()), nullptr);
}

TEST_F(PopoverWindowTest, NotifiesTheModelOnceForEachWayToOpenAndClose) {
  const std::vector<std::pair<PopoverStyle, std::function<void()>>> ways{
      {PopoverStyle::popup, [this] { pressKey(window_, Qt::Key_Escape); }},
      {PopoverStyle::popup, [this] { press(window_.geometry().bottomRight() + QPoint(40, 40)); }},
      {PopoverStyle::popup, [this] { toggle(); }},
      {PopoverStyle::tool, [this] { pressKey(*view_, Qt::Key_Escape); }},
      {PopoverStyle::tool, [] { QApplication::setActiveWindow(nullptr); }},
      {PopoverStyle::tool, [this] { toggle(item, PopoverStyle::tool); }},
      {PopoverStyle::regular, [this] { window_.close(); }}};
  std::vector<double> expected = fixture_.timerIntervals();
  for (const auto& [style, close] : ways) {
    now_ += 1s;
    open(style);
    expected.push_back(3);
    EXPECT_EQ(fixture_.timerIntervals(), expected);
    close();
    PopoverFixture::settle();
    expected.push_back(30);
    EXPECT_EQ(fixture_.timerIntervals(), expected);
    EXPECT_FALSE(window_.isVisible());
  }
}

TEST_F(PopoverWindowTest, ChangesItsStyleWhileItIsOpen) {
  open(PopoverStyle::regular);
  EXPECT_EQ(window_.style(), PopoverStyle::regular);
  open(PopoverStyle::popup);
  EXPECT_EQ(window_.style(), PopoverStyle::popup);
  EXPECT_TRUE(window_.isVisible());
  EXPECT_EQ(window_.windowType(), Qt::Popup);
  EXPECT_EQ(fixture_.timerIntervals().back(), 3);
}

}  // namespace
}  // namespace tarn
