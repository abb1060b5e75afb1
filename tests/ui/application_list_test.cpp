// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the rows of the list do when figures change and when they are used.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <algorithm>
#include <string>
#include <vector>

#include "ui/widgets/controls.hpp"
#include "ui/popover_fixture.hpp"
#include "ui/popover/tab_picker.hpp"

namespace tarn {
namespace {

GlyphView* chevronOf(const AppRow& row) {
  return row.button()->findChildren<GlyphView*>().last();
}

/// Everything that Tab stops at, in its order, starting from the tab picker.
std::vector<QWidget*> tabStops(PopoverView& view) {
  view.activateWindow();
  PopoverStage::settle();
  std::vector<QWidget*> stops;
  QWidget* first = view.findChild<TabSegment*>();
  for (QWidget* next = first; stops.empty() || next != first; next = next->nextInFocusChain()) {
    const bool stopsHere =
        next->isVisible() && next->isEnabled() && (next->focusPolicy() & Qt::TabFocus) != 0;
    if (stopsHere) stops.push_back(next);
  }
  return stops;
}

std::vector<QWidget*> expectedTabStops(const PopoverView& view) {
  std::vector<QWidget*> stops{view.findChild<TabSegment*>()};
  for (const AppRow* row : shownRows(view)) {
    if (row->button()->isEnabled()) stops.push_back(row->button());
  }
  stops.push_back(view.findChild<CheckBox*>());
  stops.push_back(view.findChild<PillButton*>());
  stops.push_back(view.findChild<LinkButton*>());
  return stops;
}

TEST(PopoverRows, OpenAndCloseWithAClick) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  AppRow* row = rowNamed(view, "Editor");
  EXPECT_EQ(chevronOf(*row)->symbolName(), "chevron.right");
  click(*row->button());
  EXPECT_EQ(linesOf(*row).size(), 2U);
  EXPECT_EQ(chevronOf(*row)->symbolName(), "chevron.down");
  EXPECT_EQ(linesOf(*rowNamed(view, "Mail")).size(), 0U);
  click(*row->button());
  EXPECT_EQ(linesOf(*row).size(), 0U);
  EXPECT_EQ(chevronOf(*row)->symbolName(), "chevron.right");
}

TEST(PopoverRows, OpenAnywhereInTheirRectangle) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  AppRow* row = rowNamed(view, "Editor");
  const QRect frame = frameIn(view, *row->button());
  for (int x = frame.left(); x <= frame.right(); x += 4) {
    for (const int y : {frame.top(), frame.center().y(), frame.bottom()}) {
      ASSERT_EQ(view.childAt(x, y), row->button()) << x << ' ' << y;
    }
  }
}

TEST(PopoverRows, OpenWithSpaceAndReturn) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  AppRow* row = rowNamed(view, "Editor");
  pressKey(*row->button(), Qt::Key_Space);
  EXPECT_EQ(linesOf(*row).size(), 2U);
  pressKey(*row->button(), Qt::Key_Return);
  EXPECT_EQ(linesOf(*row).size(), 0U);
  pressKey(*row->button(), Qt::Key_Enter);
  EXPECT_EQ(linesOf(*row).size(), 2U);
}

TEST(PopoverRows, StayOpenWhenTheRankingChanges) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  click(*rowNamed(view, "Files")->button());
  stage.setFootprint(300, 2000 * megabyte);
  stage.sweep();
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Files", "Editor", "Mail"}));
  EXPECT_EQ(linesOf(*rowNamed(view, "Files")).size(), 1U);
  EXPECT_EQ(linesOf(*rowNamed(view, "Editor")).size(), 0U);
}

TEST(PopoverRows, StayOpenOverTabs) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  click(*rowNamed(view, "Mail")->button());
  for (const char* tab : {"CPU", "System", "Memory"}) choose(view, tab);
  EXPECT_EQ(linesOf(*rowNamed(view, "Mail")).size(), 2U);
  EXPECT_EQ(linesOf(*rowNamed(view, "Editor")).size(), 0U);
}

TEST(PopoverRows, OpenAgainWhenTheirApplicationReturns) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  click(*rowNamed(view, "Mail")->button());
  stage.machine.end(200);
  stage.machine.end(201);
  stage.sweep();
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Editor", "Files"}));
  EXPECT_EQ(linesOf(*rowNamed(view, "Files")).size(), 0U);
  stage.add({"Mail.app", 900, {310 * megabyte}});
  stage.sweep();
  EXPECT_EQ(linesOf(*rowNamed(view, "Mail")).size(), 1U);
}

TEST(PopoverRows, KeepTheirWidgetsWhenTheRankingChanges) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  AppRow* editor = rowNamed(view, "Editor");
  AppRow* mail = rowNamed(view, "Mail");
  AppRow* files = rowNamed(view, "Files");
  view.activateWindow();
  mail->button()->setFocus(Qt::TabFocusReason);
  stage.settle();
  ASSERT_TRUE(mail->button()->hasFocus());
  stage.setFootprint(300, 2000 * megabyte);
  stage.sweep();
  EXPECT_EQ(shownRows(view), (std::vector<AppRow*>{files, editor, mail}));
  EXPECT_EQ(rowNamed(view, "Files"), files);
  EXPECT_EQ(rowNamed(view, "Editor"), editor);
  EXPECT_EQ(rowNamed(view, "Mail"), mail);
  EXPECT_TRUE(mail->button()->hasFocus());
}

TEST(PopoverRows, AreReadAndTabbedThroughInTheirRanking) {
  PopoverStage stage;
  PopoverView& view = stage.showView();
  stage.finishSweep();
  stage.settle();
  EXPECT_EQ(tabStops(view), expectedTabStops(view));
  addThree(stage);
  stage.sweep();
  EXPECT_EQ(tabStops(view), expectedTabStops(view)) << "rows that came late";
  stage.setFootprint(300, 2000 * megabyte);
  stage.sweep();
  EXPECT_EQ(tabStops(view), expectedTabStops(view)) << "another ranking";
  stage.add({"Big.app", 500, {9000 * megabyte}});
  stage.sweep();
  ASSERT_EQ(namesOf(view).front(), "Big");
  EXPECT_EQ(tabStops(view), expectedTabStops(view)) << "a new first row";
  choose(view, "CPU");
  stage.machine.end(500);
  stage.sweep();
  choose(view, "Memory");
  EXPECT_EQ(tabStops(view), expectedTabStops(view)) << "one row less";
  std::vector<AppRow*> children;
  for (QObject* child : shownRows(view).front()->parentWidget()->children()) {
    auto* row = qobject_cast<AppRow*>(child);
    if (row != nullptr) children.push_back(row);
  }
  EXPECT_EQ(children, shownRows(view));
}

TEST(PopoverRows, OfAnApplicationThatIsGoneMayStillBeClicked) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  AppRow* files = rowNamed(view, "Files");
  stage.finishSweep();
  stage.settle();
  stage.machine.end(300);
  stage.loop.advance(3);
  stage.loop.tasks.runAll();
  stage.finishSweep();  // published, and not rendered yet
  ASSERT_EQ(shownRows(view).size(), 3U);
  QMetaObject::invokeMethod(files->button(), "click");
  stage.settle();
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Editor", "Mail"}));
}

TEST(PopoverSummaryRow, CannotBeOpened) {
  PopoverStage stage;
  addMany(stage, 12);
  stage.sweep();
  PopoverView& view = stage.showView();
  ASSERT_EQ(shownRows(view).size(), 9U);
  AppRow* summary = shownRows(view).back();
  EXPECT_EQ(labelsOf(*summary->button()).front()->text(), "Everything else");
  EXPECT_FALSE(summary->button()->isEnabled());
  EXPECT_EQ(chevronOf(*summary)->symbolName(), "");
  EXPECT_EQ(chevronOf(*summary)->width(), 10);
  EXPECT_EQ(summary->button()->findChild<AppIconView*>()->symbolName(), "ellipsis.circle.fill");
  const int height = view.height();
  click(*summary->button());
  EXPECT_TRUE(linesOf(*summary).empty());
  EXPECT_EQ(view.height(), height);
  EXPECT_FALSE(summary->button()->isHighlighted());
}

TEST(PopoverRows, AreNeverMoreThanNine) {
  PopoverStage stage;
  addMany(stage, 200);
  stage.sweep();
  PopoverView& view = stage.showView();
  choose(view, "CPU");
  choose(view, "Memory");
  EXPECT_EQ(view.findChildren<AppRow*>().size(), 9);
}

TEST(PopoverRows, LoadAnIconOncePerApplication) {
  PopoverStage stage;
  addThree(stage);
  stage.add({"daemon", 400, {megabyte}});
  stage.sweep();
  PopoverView& view = stage.showView();
  for (int i = 0; i < 3; ++i) stage.sweep();
  EXPECT_EQ(stage.loadedIcons, (std::vector<std::string>{"/Applications/Editor.app", "/Applications/Mail.app",
                                                         "/Applications/Files.app"}));
  EXPECT_EQ(rowNamed(view, "daemon")->button()->findChild<AppIconView*>()->symbolName(), "gearshape.fill");
}

TEST(PopoverRows, AreHighlightedOnlyWhileFocusedOrPointedAt) {
  PopoverStage stage;
  addThree(stage);
  stage.sweep();
  PopoverView& view = stage.showView();
  view.activateWindow();
  stage.settle();
  AppRow* row = rowNamed(view, "Mail");
  const QRect frame = frameIn(view, *row->button());
  const QPoint probe(frame.left() - 4, frame.center().y());
  EXPECT_FALSE(row->button()->isHighlighted());
  const QColor before = view.grab().toImage().pixelColor(probe);
  row->button()->setFocus(Qt::TabFocusReason);
  stage.settle();
  EXPECT_TRUE(row->button()->isHighlighted());
  EXPECT_NE(view.grab().toImage().pixelColor(probe), before) << "the highlight reaches beyond the content";
  EXPECT_EQ(frameIn(view, *row->button()), frame);
  view.findChild<PillButton*>()->setFocus(Qt::TabFocusReason);
  stage.settle();
  EXPECT_EQ(view.grab().toImage().pixelColor(probe), before);
}

}  // namespace
}  // namespace tarn
