// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the popover does when figures change and when it is used.

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

TEST(Popover, MeasuresUntilTheFirstSnapshotAndListsApplicationsThen) {
  PopoverStage stage;
  addThree(stage);
  PopoverView& view = stage.showView();
  EXPECT_NE(labelWithText(view, "Measuring…"), nullptr);
  EXPECT_TRUE(shownRows(view).empty());
  stage.finishSweep();
  stage.settle();
  EXPECT_EQ(labelWithText(view, "Measuring…"), nullptr);
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Editor", "Mail", "Files"}));
}

TEST(Popover, KeepsTheHeightOfTheDetailLineWhileNothingIsMeasured) {
  PopoverStage stage;
  const PopoverView& view = stage.showView();
  const auto labels = labelsOf(view);
  const auto blank = std::find_if(labels.begin(), labels.end(),
                                  [](const QLabel* label) { return label->text().trimmed().isEmpty(); });
  ASSERT_NE(blank, labels.end());
  EXPECT_EQ((*blank)->text().size(), 1);
  EXPECT_EQ((*blank)->accessibleName(), " ");
  EXPECT_GE((*blank)->height(), QFontMetrics((*blank)->font()).height());
}

TEST(Popover, StartsOnTheMemoryTab) {
  PopoverStage stage;
  const PopoverView& view = stage.showView();
  EXPECT_EQ(view.tab(), PopoverTab::memory);
  EXPECT_TRUE(view.findChildren<TabSegment*>().first()->isChecked());
}

TEST(Popover, ShowsOnTheSystemTabNeitherListNorDetailNorExplainer) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  choose(view, "System");
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
  choose(view, "Memory");
  EXPECT_EQ(shownRows(view).size(), 3U);
  EXPECT_EQ(labelWithText(view, "Reading…"), nullptr);
}

TEST(Popover, ShowsProcessorSharesOnTheCPUTab) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  choose(view, "CPU");
  EXPECT_EQ(view.findChild<GlyphView*>()->symbolName(), "cpu");
  EXPECT_NE(labelWithText(view, "Your Mac's processor is mostly idle."), nullptr);
  EXPECT_NE(
      labelWithText(view, "0%\u00a0of\u00a04\u00a0cores\u00a0in\u00a0use\u00a0· Temperature\u00a0unknown"),
      nullptr);
  AppRow* row = shownRows(view).front();
  click(*row->button());
  for (const FigureLabel* figure : row->findChildren<FigureLabel*>()) EXPECT_EQ(figure->text(), "0%");
}

TEST(Popover, TintsItsGlyphByTheVerdict) {
  PopoverStage stage;
  stage.machine.memory.swapUsed = 1;
  PopoverView& view = stage.showView();
  const GlyphView* glyph = view.findChild<GlyphView*>();
  EXPECT_EQ(glyph->color(), GlyphView::Color(Tint::green));
  stage.sweep();
  EXPECT_EQ(glyph->color(), GlyphView::Color(Tint::orange));
  choose(view, "CPU");
  EXPECT_EQ(glyph->color(), GlyphView::Color(Tint::secondary));
}

TEST(PopoverVisibility, TellsTheViewModelOnceWhenItOpensAndOnceWhenItCloses) {
  PopoverStage stage;
  stage.sweep();
  PopoverView& view = stage.makeView();
  const auto sweeps = [&] {
    stage.finishSweep();
    return stage.machine.callsOf("allPIDs");
  };
  EXPECT_EQ(stage.timerIntervals(), std::vector<double>{30});
  ASSERT_EQ(sweeps(), 1);
  view.show();
  stage.settle();
  EXPECT_EQ(stage.timerIntervals(), (std::vector<double>{30, 3}));
  EXPECT_EQ(sweeps(), 2);
  view.hide();
  stage.settle();
  EXPECT_EQ(stage.timerIntervals(), (std::vector<double>{30, 3, 30}));
  EXPECT_EQ(sweeps(), 2);
  view.show();
  stage.settle();
  EXPECT_EQ(stage.timerIntervals(), (std::vector<double>{30, 3, 30, 3}));
  EXPECT_EQ(sweeps(), 3);
}

TEST(PopoverVisibility, RendersNothingWhileItIsHiddenAndCatchesUpWhenItIsShown) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  stage.finishSweep();
  view.hide();
  stage.settle();
  stage.add({"Big.app", 500, {9000 * megabyte}});
  stage.sweep();
  EXPECT_EQ(view.findChildren<AppRow*>().size(), 3);
  view.show();
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Big", "Editor", "Mail", "Files"}));
}

TEST(PopoverVisibility, KeepsTabAndOpenRowsWhileItIsHidden) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  choose(view, "CPU");
  click(*rowNamed(view, "Mail")->button());
  view.hide();
  stage.settle();
  view.show();
  stage.settle();
  EXPECT_EQ(view.tab(), PopoverTab::cpu);
  EXPECT_EQ(linesOf(*rowNamed(view, "Mail")).size(), 2U);
}

TEST(PopoverFooter, FlipsThePreferenceAtOnce) {
  PopoverStage stage;
  PopoverView& view = stage.showView();
  auto* box = view.findChild<CheckBox*>();
  EXPECT_FALSE(box->isChecked());
  click(*box);
  EXPECT_TRUE(stage.preferences->showFrontmostFootprint());
  EXPECT_TRUE(box->isChecked());
  pressKey(*box, Qt::Key_Space);
  EXPECT_FALSE(stage.preferences->showFrontmostFootprint());
  EXPECT_FALSE(box->isChecked());
}

TEST(PopoverFooter, FollowsAPreferenceThatWasChangedElsewhere) {
  PopoverStage stage;
  PopoverView& view = stage.showView();
  auto* box = view.findChild<CheckBox*>();
  stage.preferences->setShowFrontmostFootprint(true);
  stage.settle();
  EXPECT_TRUE(box->isChecked());
  Preferences otherProcess(stage.folder.filePath("preferences.ini"));
  otherProcess.setShowFrontmostFootprint(false);
  stage.sweep();
  EXPECT_FALSE(box->isChecked());
  EXPECT_FALSE(otherProcess.showFrontmostFootprint()) << "showing it is not changing it";
}

TEST(PopoverFooter, AsksToQuit) {
  PopoverStage stage;
  PopoverView& view = stage.showView();
  const QSignalSpy quits(&view, &PopoverView::quitRequested);
  auto* quit = view.findChild<PillButton*>();
  click(*quit);
  EXPECT_EQ(quits.count(), 1);
  pressKey(*quit, Qt::Key_Space);
  pressKey(*quit, Qt::Key_Return);
  EXPECT_EQ(quits.count(), 3);
}

TEST(PopoverFooter, NamesTheVersion) {
  QCoreApplication::setApplicationVersion("2.3");
  {
    PopoverStage stage;
    EXPECT_NE(labelWithText(stage.showView(), " · v2.3"), nullptr);
  }
  QCoreApplication::setApplicationVersion("");
  PopoverStage stage;
  EXPECT_NE(labelWithText(stage.showView(), " · v1.0"), nullptr);
}

TEST(PopoverTabs, MoveWithTheArrowKeys) {
  PopoverStage stage;
  PopoverView& view = stage.showView();
  view.activateWindow();
  const auto segments = view.findChildren<TabSegment*>();
  segments[0]->setFocus(Qt::TabFocusReason);
  stage.settle();
  pressKey(*segments[0], Qt::Key_Right);
  EXPECT_EQ(view.tab(), PopoverTab::cpu);
  EXPECT_TRUE(segments[1]->hasFocus());
  pressKey(*segments[1], Qt::Key_Right);
  EXPECT_EQ(view.tab(), PopoverTab::system);
  pressKey(*segments[2], Qt::Key_Left);
  EXPECT_EQ(view.tab(), PopoverTab::cpu);
}

TEST(PopoverLink, AsksForTheMakersPageOncePerClick) {
  PopoverStage stage;
  PopoverView& view = stage.showView();
  const QSignalSpy requests(&view, &PopoverView::urlRequested);
  click(*view.findChild<LinkButton*>());
  EXPECT_EQ(requests.size(), 1);
  EXPECT_EQ(requests.value(0), QVariantList{QStringLiteral("https://tarn.example")});
}

TEST(PopoverTabs, AreEnteredAtTheChosenOneHoweverItWasChosen) {
  PopoverStage stage;
  PopoverView& view = stage.showView();
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
