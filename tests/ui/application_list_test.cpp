// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The rows of the application list: their icons, and their behaviour when figures change and on user input.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <algorithm>
#include <string>
#include <vector>

#include "ui/popover/app_row.hpp"
#include "ui/popover/tab_picker.hpp"
#include "ui/popover_fixture.hpp"
#include "ui/widgets/controls.hpp"

namespace tarn {
namespace {

GlyphView* chevronOf(const AppRow& row) {
  return row.button()->findChildren<GlyphView*>().last();
}

/// The widgets that the Tab key visits, in this order, starting at the tab picker.
std::vector<QWidget*> tabStops(PopoverView& view) {
  view.activateWindow();
  PopoverFixture::settle();
  std::vector<QWidget*> stops;
  QWidget* first = view.findChild<TabSegment*>();
  for (QWidget* next = first; stops.empty() || next != first; next = next->nextInFocusChain()) {
    const bool isTabStop =
        next->isVisible() && next->isEnabled() && (next->focusPolicy() & Qt::TabFocus) != 0;
    if (isTabStop) stops.push_back(next);
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

TEST(PopoverRows, ExpandAndCollapseWithAClick) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
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

TEST(PopoverRows, AreClickableInTheirWholeRectangle) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  AppRow* row = rowNamed(view, "Editor");
  const QRect frame = frameIn(view, *row->button());
  for (int x = frame.left(); x <= frame.right(); x += 4) {
    for (const int y : {frame.top(), frame.center().y(), frame.bottom()}) {
      ASSERT_EQ(view.childAt(x, y), row->button()) << x << ' ' << y;
    }
  }
}

TEST(PopoverRows, ExpandWithSpaceAndReturn) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  AppRow* row = rowNamed(view, "Editor");
  pressKey(*row->button(), Qt::Key_Space);
  EXPECT_EQ(linesOf(*row).size(), 2U);
  pressKey(*row->button(), Qt::Key_Return);
  EXPECT_EQ(linesOf(*row).size(), 0U);
  pressKey(*row->button(), Qt::Key_Enter);
  EXPECT_EQ(linesOf(*row).size(), 2U);
}

TEST(PopoverRows, StayExpandedWhenTheRankingChanges) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  click(*rowNamed(view, "Files")->button());
  fixture.setFootprint(300, 2000 * megabyte);
  fixture.sweep();
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Files", "Editor", "Mail"}));
  EXPECT_EQ(linesOf(*rowNamed(view, "Files")).size(), 1U);
  EXPECT_EQ(linesOf(*rowNamed(view, "Editor")).size(), 0U);
}

TEST(PopoverRows, StayExpandedWhenTheTabChanges) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  click(*rowNamed(view, "Mail")->button());
  for (const char* tab : {"CPU", "System", "Memory"}) selectTab(view, tab);
  EXPECT_EQ(linesOf(*rowNamed(view, "Mail")).size(), 2U);
  EXPECT_EQ(linesOf(*rowNamed(view, "Editor")).size(), 0U);
}

TEST(PopoverRows, ExpandAgainWhenTheirApplicationReturns) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  click(*rowNamed(view, "Mail")->button());
  fixture.machine.end(200);
  fixture.machine.end(201);
  fixture.sweep();
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Editor", "Files"}));
  EXPECT_EQ(linesOf(*rowNamed(view, "Files")).size(), 0U);
  fixture.add({"Mail.app", 900, {310 * megabyte}});
  fixture.sweep();
  EXPECT_EQ(linesOf(*rowNamed(view, "Mail")).size(), 1U);
}

TEST(PopoverRows, KeepTheirWidgetsWhenTheRankingChanges) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  AppRow* editor = rowNamed(view, "Editor");
  AppRow* mail = rowNamed(view, "Mail");
  AppRow* files = rowNamed(view, "Files");
  view.activateWindow();
  mail->button()->setFocus(Qt::TabFocusReason);
  fixture.settle();
  ASSERT_TRUE(mail->button()->hasFocus());
  fixture.setFootprint(300, 2000 * megabyte);
  fixture.sweep();
  EXPECT_EQ(shownRows(view), (std::vector<AppRow*>{files, editor, mail}));
  EXPECT_EQ(rowNamed(view, "Files"), files);
  EXPECT_EQ(rowNamed(view, "Editor"), editor);
  EXPECT_EQ(rowNamed(view, "Mail"), mail);
  EXPECT_TRUE(mail->button()->hasFocus());
}

TEST(PopoverRows, HaveTheReadingAndTabOrderOfTheRanking) {
  PopoverFixture fixture;
  PopoverView& view = fixture.showView();
  fixture.finishSweep();
  fixture.settle();
  EXPECT_EQ(tabStops(view), expectedTabStops(view));
  addThree(fixture);
  fixture.sweep();
  EXPECT_EQ(tabStops(view), expectedTabStops(view)) << "rows were added";
  fixture.setFootprint(300, 2000 * megabyte);
  fixture.sweep();
  EXPECT_EQ(tabStops(view), expectedTabStops(view)) << "the ranking changed";
  fixture.add({"Big.app", 500, {9000 * megabyte}});
  fixture.sweep();
  ASSERT_EQ(namesOf(view).front(), "Big");
  EXPECT_EQ(tabStops(view), expectedTabStops(view)) << "a first row was added";
  selectTab(view, "CPU");
  fixture.machine.end(500);
  fixture.sweep();
  selectTab(view, "Memory");
  EXPECT_EQ(tabStops(view), expectedTabStops(view)) << "a row was removed";
  std::vector<AppRow*> children;
  for (QObject* child : shownRows(view).front()->parentWidget()->children()) {
    auto* row = qobject_cast<AppRow*>(child);
    if (row != nullptr) children.push_back(row);
  }
  EXPECT_EQ(children, shownRows(view));
}

TEST(PopoverRows, CanBeClickedAfterTheirApplicationEnded) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  AppRow* files = rowNamed(view, "Files");
  fixture.finishSweep();
  fixture.settle();
  fixture.machine.end(300);
  fixture.loop.advance(3);
  fixture.loop.tasks.runAll();
  fixture.finishSweep();  // published, and not rendered yet
  ASSERT_EQ(shownRows(view).size(), 3U);
  QMetaObject::invokeMethod(files->button(), "click");
  fixture.settle();
  EXPECT_EQ(namesOf(view), (std::vector<QString>{"Editor", "Mail"}));
}

TEST(PopoverSummaryRow, CannotBeExpanded) {
  PopoverFixture fixture;
  addMany(fixture, 12);
  fixture.sweep();
  PopoverView& view = fixture.showView();
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
  PopoverFixture fixture;
  addMany(fixture, 200);
  fixture.sweep();
  PopoverView& view = fixture.showView();
  selectTab(view, "CPU");
  selectTab(view, "Memory");
  EXPECT_EQ(view.findChildren<AppRow*>().size(), 9);
}

TEST(PopoverRows, LoadAnIconOncePerApplication) {
  PopoverFixture fixture;
  addThree(fixture);
  fixture.add({"daemon", 400, {megabyte}});
  fixture.sweep();
  PopoverView& view = fixture.showView();
  for (int i = 0; i < 3; ++i) fixture.sweep();
  EXPECT_EQ(fixture.loadedIcons,
            (std::vector<std::string>{"/Applications/Editor.app", "/Applications/Mail.app",
                                      "/Applications/Files.app"}));
  EXPECT_EQ(rowNamed(view, "daemon")->button()->findChild<AppIconView*>()->symbolName(), "gearshape.fill");
}

TEST(PopoverRows, AreHighlightedOnlyWithFocusOrPointer) {
  PopoverFixture fixture;
  PopoverView& view = showThree(fixture);
  view.activateWindow();
  fixture.settle();
  AppRow* row = rowNamed(view, "Mail");
  const QRect frame = frameIn(view, *row->button());
  const QPoint probe(frame.left() - 4, frame.center().y());
  EXPECT_FALSE(row->button()->isHighlighted());
  const QColor before = view.grab().toImage().pixelColor(probe);
  row->button()->setFocus(Qt::TabFocusReason);
  fixture.settle();
  EXPECT_TRUE(row->button()->isHighlighted());
  EXPECT_NE(view.grab().toImage().pixelColor(probe), before) << "the highlight is wider than the content";
  EXPECT_EQ(frameIn(view, *row->button()), frame);
  view.findChild<PillButton*>()->setFocus(Qt::TabFocusReason);
  fixture.settle();
  EXPECT_EQ(view.grab().toImage().pixelColor(probe), before);
}

RowContent applicationRow(const std::string& path) {
  return {.id = path, .bundlePath = path, .symbol = "gearshape.fill"};
}

QIcon blueIcon() {
  QPixmap pixmap(64, 64);
  pixmap.fill(QColor(Qt::blue));
  return pixmap;
}

TEST(AppIconProvider, LoadsEachApplicationsIconOnce) {
  std::vector<std::string> loaded;
  AppIconProvider provider([&](const std::string& path) {
    loaded.push_back(path);
    return blueIcon();
  });
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(provider.icon(applicationRow("/Applications/A.app"), 1).image.isNull());
    EXPECT_FALSE(provider.icon(applicationRow("/Applications/B.app"), 2).image.isNull());
  }
  EXPECT_EQ(loaded, (std::vector<std::string>{"/Applications/A.app", "/Applications/B.app"}));
}

TEST(AppIconProvider, RequestsAMissingIconOnce) {
  int requests = 0;
  AppIconProvider provider([&](const std::string&) {
    ++requests;
    return QIcon();
  });
  for (int i = 0; i < 3; ++i) {
    const AppIcon icon = provider.icon(applicationRow("/Applications/Gone.app"), 1);
    EXPECT_TRUE(icon.image.isNull());
    EXPECT_EQ(icon.symbolName, "gearshape.fill");
  }
  EXPECT_EQ(requests, 1);
}

TEST(AppIconProvider, ReturnsAnImageOf32PointsAtTheScreensScale) {
  AppIconProvider provider([](const std::string&) { return blueIcon(); });
  const AppIcon plain = provider.icon(applicationRow("/Applications/A.app"), 1);
  EXPECT_EQ(plain.image.deviceIndependentSize(), QSizeF(32, 32));
  EXPECT_TRUE(plain.symbolName.isEmpty());
  const AppIcon doubled = provider.icon(applicationRow("/Applications/A.app"), 2);
  EXPECT_EQ(doubled.image.deviceIndependentSize(), QSizeF(32, 32));
  EXPECT_EQ(doubled.image.size(), QSize(64, 64));
}

TEST(AppIconProvider, ReturnsASymbolForARowWithoutABundle) {
  AppIconProvider provider([](const std::string& path) -> QIcon {
    ADD_FAILURE() << "requested " << path;
    return {};
  });
  const AppIcon gear = provider.icon({.id = "pid:12", .symbol = "gearshape.fill"}, 1);
  EXPECT_TRUE(gear.image.isNull());
  EXPECT_EQ(gear.symbolName, "gearshape.fill");
  const AppIcon ellipsis = provider.icon({.id = "everything-else", .symbol = "ellipsis.circle.fill"}, 1);
  EXPECT_TRUE(ellipsis.image.isNull());
  EXPECT_EQ(ellipsis.symbolName, "ellipsis.circle.fill");
}

}  // namespace
}  // namespace tarn
