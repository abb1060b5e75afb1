// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Positions, sizes, fonts and colours in the popover. It is 320 points wide and has a padding of 14, so its
// content is 292 wide: from x = 14 to x = 305, both included.

#include <gtest/gtest.h>

#include <QLabel>
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "ui/popover/tab_picker.hpp"
#include "ui/popover_fixture.hpp"
#include "ui/widgets/controls.hpp"

namespace tarn {
namespace {

constexpr auto editorRow = "Editor";

/// Two applications with several processes, an application with one process, and a process without a bundle.
void addUsualApplications(PopoverFixture& fixture) {
  fixture.add({"Editor.app", 100, {400 * megabyte, 100 * megabyte, 11 * megabyte}});
  fixture.add({"Mail.app", 200, {300 * megabyte, 5 * megabyte}});
  fixture.add({"Files.app", 300, {90 * megabyte}});
  fixture.add({"daemon", 400, {20 * megabyte}});
}

/// More than eight applications, so that there is a summary row.
void addManyApplications(PopoverFixture& fixture) {
  for (int i = 0; i < 12; ++i) {
    const auto size = static_cast<std::uint64_t>(12 - i) * 111 * megabyte;
    fixture.add({"App" + std::to_string(i) + ".app", 1000 + 10 * i, {size, megabyte}});
  }
}

struct ExpectedText {
  QString text;
  int size;
  QFont::Weight weight;
  TextStyle style;
};

void expectText(const QWidget& view, const Theme& theme, const ExpectedText& expected) {
  SCOPED_TRACE(expected.text.toStdString());
  const QLabel* label = labelWithText(view, expected.text);
  ASSERT_NE(label, nullptr);
  EXPECT_EQ(label->font().pixelSize(), expected.size);
  EXPECT_EQ(label->font().weight(), expected.weight);
  EXPECT_EQ(label->palette().color(label->foregroundRole()), theme.color(expected.style));
  EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

TEST(PopoverLayout, IsAlways320PointsWide) {
  PopoverFixture fixture;
  fixture.add({std::string(5000, 'W') + ".app", 100, {megabyte, megabyte}});
  PopoverView& view = fixture.showView();
  for (const int pressure : {1, 2, 4}) {
    fixture.pressureLevel = pressure;
    for (TabSegment* segment : view.findChildren<TabSegment*>()) {
      segment->click();
      fixture.sweep();
      EXPECT_EQ(view.width(), 320);
      EXPECT_EQ(view.minimumWidth(), 320);
      EXPECT_EQ(view.maximumWidth(), 320);
    }
  }
}

TEST(PopoverLayout, SeparatesBlocksByTwelvePointsInsideAPaddingOfFourteen) {
  PopoverFixture fixture;
  addUsualApplications(fixture);
  fixture.sweep();
  const PopoverView& view = fixture.showView();
  const QRect status = frameIn(view, *labelWithText(view, "Your Mac has memory to spare."));
  const QRect picker = frameIn(view, *view.findChild<TabPicker*>());
  const auto rows = shownRows(view);
  const QRect footer = frameIn(view, *view.findChild<PopoverFooter*>());

  EXPECT_EQ(status.top(), 14);
  EXPECT_EQ(picker.top(), status.bottom() + 1 + 12);
  EXPECT_EQ(picker.left(), 14);
  EXPECT_EQ(picker.right(), 305);
  const auto lines = dividersOf(view);
  ASSERT_EQ(lines.size(), 3U);
  for (const QRect& line : lines) {
    EXPECT_EQ(line.left(), 14);
    EXPECT_EQ(line.right(), 305);
    EXPECT_EQ(line.height(), 1);
  }
  EXPECT_EQ(lines[0].top(), picker.bottom() + 1 + 12);
  EXPECT_EQ(frameIn(view, *rows.front()).top(), lines[0].bottom() + 1 + 12);
  EXPECT_EQ(lines[1].top(), frameIn(view, *rows.back()).bottom() + 1 + 12);
  EXPECT_EQ(footer.top(), lines[2].bottom() + 1 + 12);
  EXPECT_EQ(footer.left(), 14);
  EXPECT_EQ(footer.right(), 305);
  EXPECT_EQ(view.height(), footer.bottom() + 1 + 14);
}

TEST(PopoverLayout, SeparatesDetailAndExplainerByTwelvePoints) {
  PopoverFixture fixture;
  addUsualApplications(fixture);
  fixture.sweep();
  const PopoverView& view = fixture.showView();
  const QLabel* explainer =
      labelWithText(view, "Cached files are free space macOS is borrowing — it gives them back instantly.");
  ASSERT_NE(explainer, nullptr);
  const QLabel* detail = nullptr;
  for (const QLabel* label : labelsOf(view)) {
    if (label->text().startsWith("Wired")) detail = label;
  }
  ASSERT_NE(detail, nullptr);
  EXPECT_EQ(frameIn(view, *explainer).top(), frameIn(view, *detail).bottom() + 1 + 12);
  EXPECT_EQ(frameIn(view, *detail).left(), 14);
  EXPECT_EQ(frameIn(view, *explainer).left(), 14);
  EXPECT_EQ(frameIn(view, *explainer).width(), 292);
}

TEST(PopoverLayout, AlignsTheStatusGlyphWithTheFirstLineOfText) {
  PopoverFixture fixture;
  fixture.pressureLevel = 2;
  const PopoverView& view = fixture.showView();
  const QLabel* text =
      labelWithText(view, "Your Mac is running short on memory. Closing an app below would help.");
  ASSERT_NE(text, nullptr);
  const GlyphView* glyph = view.findChild<GlyphView*>();
  const QRect glyphFrame = frameIn(view, *glyph);
  const QRect textFrame = frameIn(view, *text);
  EXPECT_EQ(glyph->symbolName(), "memorychip");
  EXPECT_EQ(glyphFrame, QRect(14, 15, 14, 14));
  EXPECT_EQ(textFrame.top(), 14);
  EXPECT_EQ(textFrame.left(), glyphFrame.right() + 1 + 8);
  EXPECT_LE(textFrame.right(), 305);
  EXPECT_GE(textFrame.height(), 2 * QFontMetrics(text->font()).ascent()) << "two lines";
}

TEST(PopoverLayout, SeparatesRowsByTwoPoints) {
  PopoverFixture fixture;
  addUsualApplications(fixture);
  fixture.sweep();
  const PopoverView& view = fixture.showView();
  const auto rows = shownRows(view);
  ASSERT_EQ(rows.size(), 4U);
  const std::vector<int> heights{33, 33, 18, 18};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const QRect frame = frameIn(view, *rows[i]);
    EXPECT_EQ(frame.height(), heights[i]);
    EXPECT_EQ(frame.left(), 14);
    EXPECT_EQ(frame.right(), 305);
    if (i == 0) continue;
    EXPECT_EQ(frame.top(), frameIn(view, *rows[i - 1]).bottom() + 1 + 2);
  }
}

TEST(PopoverLayout, AlignsIconNameFigureAndChevronOnEveryRow) {
  PopoverFixture fixture;
  addManyApplications(fixture);
  fixture.add({"daemon", 4000, {5000 * megabyte}});
  fixture.sweep();
  const PopoverView& view = fixture.showView();
  const auto rows = shownRows(view);
  ASSERT_EQ(rows.size(), 9U);
  for (const AppRow* row : rows) {
    const auto glyphs = row->button()->findChildren<GlyphView*>();
    ASSERT_EQ(glyphs.size(), 2);
    const QRect button = frameIn(view, *row->button());
    const QRect icon = frameIn(view, *glyphs[0]);
    const QRect chevron = frameIn(view, *glyphs[1]);
    const QRect name = frameIn(view, *labelsOf(*row->button()).front());
    const QRect value = frameIn(view, *row->button()->findChild<FigureLabel*>());
    EXPECT_EQ(icon.size(), QSize(18, 18));
    EXPECT_EQ(icon.left(), 14);
    EXPECT_LE(std::abs(icon.center().y() - button.center().y()), 1);
    EXPECT_EQ(name.left(), icon.right() + 1 + 8);
    EXPECT_EQ(name.right() + 1 + 8, value.left());
    EXPECT_EQ(value.right() + 1 + 8, chevron.left());
    EXPECT_EQ(chevron.width(), 10);
    EXPECT_EQ(chevron.right(), 305);
    EXPECT_LE(std::abs(value.center().y() - button.center().y()), 1);
  }
}

TEST(PopoverLayout, IndentsProcessLinesUnderTheNameAndAlignsTheirFigures) {
  PopoverFixture fixture;
  addUsualApplications(fixture);
  fixture.sweep();
  PopoverView& view = fixture.showView();
  AppRow* row = rowNamed(view, editorRow);
  click(*row->button());
  const auto lines = linesOf(*row);
  ASSERT_EQ(lines.size(), 3U);
  int above = frameIn(view, *row->button()).bottom();
  for (const ProcessLineView* line : lines) {
    const auto labels = labelsOf(*line);
    ASSERT_EQ(labels.size(), 3U);
    const QRect name = frameIn(view, *labels[0]);
    const QRect pid = frameIn(view, *labels[1]);
    const QRect value = frameIn(view, *labels[2]);
    EXPECT_EQ(frameIn(view, *line).top(), above + 1 + 2);
    EXPECT_EQ(name.left(), 14 + 26);
    EXPECT_EQ(name.left(), frameIn(view, *labelsOf(*row->button()).front()).left());
    EXPECT_EQ(pid.left(), name.right() + 1 + 6);
    EXPECT_EQ(value.right(), 305);
    EXPECT_GT(value.left(), pid.right());
    above = frameIn(view, *line).bottom();
  }
  EXPECT_EQ(frameIn(view, *rowNamed(view, "Mail")).top(), above + 1 + 2);
}

TEST(PopoverLayout, SetsEveryTextInItsFontAndStyleInBothThemes) {
  for (const Theme* theme : {&Theme::light(), &Theme::dark()}) {
    PopoverFixture fixture;
    addUsualApplications(fixture);
    fixture.sweep();
    PopoverView& view = fixture.showView(*theme);
    click(*rowNamed(view, editorRow)->button());
    for (const ExpectedText& expected : std::vector<ExpectedText>{
             {"Your Mac has memory to spare.", 13, QFont::Medium, TextStyle::primary},
             {"Editor", 12, QFont::Medium, TextStyle::primary},
             {"3 background processes", 10, QFont::Normal, TextStyle::secondary},
             {"511 MB", 12, QFont::Normal, TextStyle::secondary},
             {"part100", 10, QFont::Normal, TextStyle::secondary},
             {"· PID 100", 10, QFont::Normal, TextStyle::tertiary},
             {"400 MB", 10, QFont::Normal, TextStyle::tertiary},
             {"Wired\u00a00\u00a0bytes\u00a0· Compressed\u00a00\u00a0bytes\u00a0· "
              "Cached\u00a0files\u00a00\u00a0bytes"
              "\u00a0· Swap\u00a00\u00a0bytes",
              11, QFont::Normal, TextStyle::secondary},
             {"Cached files are free space macOS is borrowing — it gives them back instantly.", 10,
              QFont::Normal, TextStyle::tertiary},
             {"Made with ❤️ by ", 10, QFont::Normal, TextStyle::tertiary},
             {" · v1.0", 10, QFont::Normal, TextStyle::tertiary}}) {
      expectText(view, *theme, expected);
    }
    EXPECT_EQ(view.findChild<CheckBox*>()->font().pixelSize(), 11);
    EXPECT_EQ(view.findChild<PillButton*>()->font().pixelSize(), 11);
    EXPECT_EQ(view.findChild<LinkButton*>()->font().pixelSize(), 10);
  }
}

TEST(PopoverLayout, CentresPlaceholdersInEightPointsOfPadding) {
  PopoverFixture fixture;
  PopoverView& view = fixture.showView();
  for (const char* text : {"Measuring…", "Reading…"}) {
    const QLabel* placeholder = labelWithText(view, text);
    ASSERT_NE(placeholder, nullptr) << text;
    expectText(view, Theme::light(), {text, 12, QFont::Normal, TextStyle::secondary});
    EXPECT_EQ(placeholder->height(), QFontMetrics(placeholder->font()).height() + 16);
    EXPECT_EQ(frameIn(view, *placeholder).left(), 14);
    EXPECT_EQ(placeholder->width(), 292);
    EXPECT_TRUE(placeholder->alignment().testFlag(Qt::AlignHCenter));
    const QRect divider = dividersOf(view).front();
    EXPECT_EQ(frameIn(view, *placeholder).top(), divider.bottom() + 1 + 12) << text;
    view.findChildren<TabSegment*>().last()->click();
    fixture.settle();
  }
}

TEST(PopoverLayout, KeepsTheFigureInPlaceWhenItsDigitsChange) {
  PopoverFixture fixture;
  fixture.add({"Editor.app", 100, {111 * megabyte + 103 * kilobyte}});
  fixture.sweep();
  PopoverView& view = fixture.showView();
  const auto figure = [&] { return rowNamed(view, editorRow)->button()->findChild<FigureLabel*>(); };
  ASSERT_EQ(figure()->text(), "111.1 MB");
  const QRect before = frameIn(view, *figure());
  fixture.setFootprint(100, 999 * megabyte + 922 * kilobyte);
  fixture.sweep();
  ASSERT_EQ(figure()->text(), "999.9 MB");
  EXPECT_EQ(frameIn(view, *figure()), before);
}

TEST(PopoverLayout, ElidesALongNameAndKeepsTheFigure) {
  PopoverFixture fixture;
  fixture.add({std::string(100, 'W') + ".app", 100, {512 * megabyte}});
  fixture.add({"Editor.app", 200, {415 * megabyte}});
  fixture.sweep();
  PopoverView& view = fixture.showView();
  const auto rows = shownRows(view);
  ASSERT_EQ(rows.size(), 2U);
  const auto figureFrame = [&](const AppRow* row) {
    return frameIn(*row, *row->button()->findChild<FigureLabel*>());
  };
  EXPECT_EQ(figureFrame(rows[0]), figureFrame(rows[1]));
  const QLabel* name = labelsOf(*rows[0]->button()).front();
  EXPECT_LT(name->width(), QFontMetrics(name->font()).horizontalAdvance(name->text()));
}

TEST(PopoverLayout, CentresTheAboutLine) {
  PopoverFixture fixture;
  const PopoverView& view = fixture.showView();
  const QRect credit = frameIn(view, *labelWithText(view, "Made with ❤️ by "));
  const QRect link = frameIn(view, *view.findChild<LinkButton*>());
  const QRect version = frameIn(view, *labelWithText(view, " · v1.0"));
  EXPECT_EQ(link.left(), credit.right() + 1);
  EXPECT_EQ(version.left(), link.right() + 1);
  EXPECT_LE(std::abs(credit.center().y() - link.center().y()), 1);
  EXPECT_LE(std::abs(version.center().y() - link.center().y()), 1);
  EXPECT_LE(std::abs((credit.left() - 14) - (305 - version.right())), 1);
  EXPECT_GE(credit.left(), 14);
}

TEST(PopoverLayout, PutsTheCheckboxAtTheLeftAndQuitAtTheRight) {
  PopoverFixture fixture;
  const PopoverView& view = fixture.showView();
  const QRect box = frameIn(view, *view.findChild<CheckBox*>());
  const QRect quit = frameIn(view, *view.findChild<PillButton*>());
  const QRect link = frameIn(view, *view.findChild<LinkButton*>());
  EXPECT_EQ(box.left(), 14);
  EXPECT_EQ(quit.right(), 305);
  EXPECT_LE(std::abs(box.center().y() - quit.center().y()), 1);
  EXPECT_EQ(view.findChild<CheckBox*>()->text(), "Show frontmost app in menu bar");
  EXPECT_EQ(view.findChild<PillButton*>()->text(), "Quit");
  EXPECT_GE(link.top(), std::max(box.bottom(), quit.bottom()) + 1 + 8);
}

TEST(PopoverLayout, ShowsHostileNamesAsPlainTextInRowsOfTheUsualHeight) {
  std::string combining = "a";
  for (int i = 0; i < 300; ++i) combining += "\u0301";
  const std::vector<std::string> names{"<b>bold</b><img src=x>",
                                       "two\nlines\r\n\tand more",
                                       "\u202Eevil\u2066 name",
                                       "\xff\xfe\xc3(",
                                       combining,
                                       std::string(std::size_t{128} * 1024, 'M'),
                                       "&amp; & co",
                                       "\u200b\u200b"};
  PopoverFixture fixture;
  std::int32_t pid = 100;
  for (const std::string& name : names) {
    const auto size = 20 * megabyte;
    fixture.machine.processes.push_back(
        {.pid = pid, .usage = ProcessUsage{.footprint = size}, .systemName = name});
    ++pid;
  }
  fixture.sweep();
  PopoverView& view = fixture.showView();
  const auto rows = shownRows(view);
  ASSERT_EQ(rows.size(), names.size());
  for (AppRow* row : rows) {
    click(*row->button());
    const FigureLabel* figure = row->button()->findChild<FigureLabel*>();
    EXPECT_EQ(row->button()->height(), 18);
    EXPECT_EQ(figure->text(), "20 MB");
    EXPECT_EQ(frameIn(view, *figure).right(), 305 - 18);  // chevron 10, gap 8
    ASSERT_EQ(linesOf(*row).size(), 1U);
    EXPECT_EQ(linesOf(*row).front()->height(), 14);
    EXPECT_EQ(frameIn(view, *linesOf(*row).front()->findChild<FigureLabel*>()).right(), 305);
    for (const QLabel* label : labelsOf(*row)) EXPECT_EQ(label->textFormat(), Qt::PlainText);
  }
  EXPECT_NE(labelWithText(view, "<b>bold</b><img src=x>"), nullptr);
  EXPECT_NE(labelWithText(view, "&amp; & co"), nullptr);
  view.grab();
}

}  // namespace
}  // namespace tarn
