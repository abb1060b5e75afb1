// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The popover's behaviour when figures change and on user input.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <algorithm>
#include <string>
#include <vector>

#include "ui/popover/tab_picker.hpp"
#include "ui/popover_fixture.hpp"
#include "ui/widgets/controls.hpp"

namespace tarn {
namespace {

TEST(Popover, ShowsMeasuringUntilTheFirstSnapshot) {
  PopoverFixture fixture;
  addThree(fixture);
  PopoverView& view = fixture.showView();
  EXPECT_NE(labelWithText(view, "Measuring…"), nullptr);
  EXPECT_TRUE(shownRows(view).empty());
  fixture.finishSweep();
  fixture.settle();
  EXPECT_EQ(labelWithText(view, "Measuring…"), nullptr);
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Editor", "Mail", "Files"}));
}

TEST(Popover, KeepsTheHeightOfTheDetailLineBeforeTheFirstSnapshot) {
  PopoverFixture fixture;
  const PopoverView& view = fixture.showView();
  const auto labels = labelsOf(view);
  const auto blank = std::find_if(labels.begin(), labels.end(),
                                  [](const QLabel* label) { return label->text().trimmed().isEmpty(); });
  ASSERT_NE(blank, labels.end());
  EXPECT_EQ((*blank)->text().size(), 1);
  EXPECT_EQ((*blank)->accessibleName(), " ");
  EXPECT_GE((*blank)->height(), QFontMetrics((*blank)->font()).height());
}

TEST(Popover, StartsOnTheMemoryTab) {
  PopoverFixture fixture;
  const PopoverView& view = fixture.showView();
  EXPECT_EQ(view.tab(), PopoverTab::memory);
  EXPECT_TRUE(view.findChildren<TabSegment*>().first()->isChecked());
}

TEST(Popover, HidesListDetailAndExplainerOnTheSystemTab) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  selectTab(view, "System");
  EXPECT_EQ(view.tab(), PopoverTab::system);
  EXPECT_TRUE(shownRows(view).empty());
  const QString footnote =
      "All read locally with no special privileges. Temperature falls back to the system's own reading when "
      "no "
      "sensor is available.";
  std::vector<QString> texts;
  for (const QLabel* label : labelsOf(view)) texts.push_back(label->text());
  EXPECT_EQ(texts, (std::vector<QString>{"A few things worth knowing.", "Reading…", footnote,
                                         "Made with ❤️ by ", " · v1.0"}));
  EXPECT_EQ(view.findChild<GlyphView*>()->symbolName(), "desktopcomputer");
  selectTab(view, "Memory");
  EXPECT_EQ(shownRows(view).size(), 3U);
  EXPECT_EQ(labelWithText(view, "Reading…"), nullptr);
}

TEST(Popover, ShowsProcessorSharesOnTheCPUTab) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  selectTab(view, "CPU");
  EXPECT_EQ(view.findChild<GlyphView*>()->symbolName(), "cpu");
  EXPECT_NE(labelWithText(view, "Your Mac's processor is mostly idle."), nullptr);
  EXPECT_NE(
      labelWithText(view, "0%\u00a0of\u00a04\u00a0cores\u00a0in\u00a0use\u00a0· Temperature\u00a0unknown"),
      nullptr);
  AppRow* row = shownRows(view).front();
  click(*row->button());
  for (const FigureLabel* figure : row->findChildren<FigureLabel*>()) EXPECT_EQ(figure->text(), "0%");
}

TEST(Popover, TintsItsGlyphByTheStatus) {
  PopoverFixture fixture;
  fixture.machine.memory.swapUsed = 1;
  PopoverView& view = fixture.showView();
  const GlyphView* glyph = view.findChild<GlyphView*>();
  EXPECT_EQ(glyph->color(), GlyphView::Color(Tint::green));
  fixture.sweep();
  EXPECT_EQ(glyph->color(), GlyphView::Color(Tint::orange));
  selectTab(view, "CPU");
  EXPECT_EQ(glyph->color(), GlyphView::Color(Tint::secondary));
}

TEST(PopoverVisibility, NotifiesTheViewModelOncePerOpeningAndClosing) {
  PopoverFixture fixture;
  fixture.sweep();
  PopoverView& view = fixture.makeView();
  const auto sweeps = [&] {
    fixture.finishSweep();
    return fixture.machine.callsOf("allPIDs");
  };
  EXPECT_EQ(fixture.timerIntervals(), std::vector<double>{30});
  ASSERT_EQ(sweeps(), 1);
  view.show();
  fixture.settle();
  EXPECT_EQ(fixture.timerIntervals(), (std::vector<double>{30, 3}));
  EXPECT_EQ(sweeps(), 2);
  view.hide();
  fixture.settle();
  EXPECT_EQ(fixture.timerIntervals(), (std::vector<double>{30, 3, 30}));
  EXPECT_EQ(sweeps(), 2);
  view.show();
  fixture.settle();
  EXPECT_EQ(fixture.timerIntervals(), (std::vector<double>{30, 3, 30, 3}));
  EXPECT_EQ(sweeps(), 3);
}

TEST(PopoverVisibility, IsNotRenderedWhileHiddenAndIsUpdatedWhenShown) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  fixture.finishSweep();
  view.hide();
  fixture.settle();
  fixture.add({"Big.app", 500, {9000 * megabyte}});
  fixture.sweep();
  EXPECT_EQ(view.findChildren<AppRow*>().size(), 3);
  view.show();
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Big", "Editor", "Mail", "Files"}));
}

TEST(PopoverVisibility, KeepsTabAndExpandedRowsWhileItIsHidden) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  selectTab(view, "CPU");
  click(*rowNamed(view, "Mail")->button());
  view.hide();
  fixture.settle();
  view.show();
  fixture.settle();
  EXPECT_EQ(view.tab(), PopoverTab::cpu);
  EXPECT_EQ(linesOf(*rowNamed(view, "Mail")).size(), 2U);
}

TEST(PopoverFooter, ChangesThePreferenceImmediately) {
  PopoverFixture fixture;
  PopoverView& view = fixture.showView();
  auto* box = view.findChild<CheckBox*>();
  EXPECT_FALSE(box->isChecked());
  click(*box);
  EXPECT_TRUE(fixture.preferences->showFrontmostFootprint());
  EXPECT_TRUE(box->isChecked());
  pressKey(*box, Qt::Key_Space);
  EXPECT_FALSE(fixture.preferences->showFrontmostFootprint());
  EXPECT_FALSE(box->isChecked());
}

TEST(PopoverFooter, ShowsAPreferenceThatChangedElsewhere) {
  PopoverFixture fixture;
  PopoverView& view = fixture.showView();
  auto* box = view.findChild<CheckBox*>();
  fixture.preferences->setShowFrontmostFootprint(true);
  fixture.settle();
  EXPECT_TRUE(box->isChecked());
  Preferences otherProcess(fixture.folder.filePath("preferences.ini"));
  otherProcess.setShowFrontmostFootprint(false);
  fixture.sweep();
  EXPECT_FALSE(box->isChecked());
  EXPECT_FALSE(otherProcess.showFrontmostFootprint()) << "showing the preference does not write it";
}

TEST(PopoverFooter, EmitsQuitRequestedWhenQuitIsPressed) {
  PopoverFixture fixture;
  PopoverView& view = fixture.showView();
  const QSignalSpy quits(&view, &PopoverView::quitRequested);
  auto* quit = view.findChild<PillButton*>();
  click(*quit);
  EXPECT_EQ(quits.count(), 1);
  pressKey(*quit, Qt::Key_Space);
  pressKey(*quit, Qt::Key_Return);
  EXPECT_EQ(quits.count(), 3);
}

TEST(PopoverFooter, ShowsTheVersion) {
  QCoreApplication::setApplicationVersion("2.3");
  {
    PopoverFixture fixture;
    EXPECT_NE(labelWithText(fixture.showView(), " · v2.3"), nullptr);
  }
  QCoreApplication::setApplicationVersion("");
  PopoverFixture fixture;
  EXPECT_NE(labelWithText(fixture.showView(), " · v1.0"), nullptr);
}

TEST(PopoverTabs, MoveWithTheArrowKeys) {
  PopoverFixture fixture;
  PopoverView& view = fixture.showView();
  view.activateWindow();
  const auto segments = view.findChildren<TabSegment*>();
  segments[0]->setFocus(Qt::TabFocusReason);
  fixture.settle();
  pressKey(*segments[0], Qt::Key_Right);
  EXPECT_EQ(view.tab(), PopoverTab::cpu);
  EXPECT_TRUE(segments[1]->hasFocus());
  pressKey(*segments[1], Qt::Key_Right);
  EXPECT_EQ(view.tab(), PopoverTab::system);
  pressKey(*segments[2], Qt::Key_Left);
  EXPECT_EQ(view.tab(), PopoverTab::cpu);
}

TEST(PopoverLink, EmitsUrlRequestedOncePerClick) {
  PopoverFixture fixture;
  PopoverView& view = fixture.showView();
  const QSignalSpy requests(&view, &PopoverView::urlRequested);
  click(*view.findChild<LinkButton*>());
  EXPECT_EQ(requests.size(), 1);
  EXPECT_EQ(requests.value(0), QVariantList{QStringLiteral("https://tarn.example")});
}

TEST(PopoverTabs, ReceiveTheFocusAtTheSelectedTab) {
  PopoverFixture fixture;
  PopoverView& view = fixture.showView();
  view.activateWindow();
  const auto segments = view.findChildren<TabSegment*>();
  const auto enter = [&] {
    view.findChild<LinkButton*>()->setFocus(Qt::TabFocusReason);
    pressKey(*view.findChild<LinkButton*>(), Qt::Key_Tab);
    return view.focusWidget();
  };
  EXPECT_EQ(enter(), segments[0]);
  click(*segments[2]);
  EXPECT_EQ(enter(), segments[2]);
  click(*segments[1]);
  EXPECT_EQ(enter(), segments[1]);
}

}  // namespace
}  // namespace tarn
