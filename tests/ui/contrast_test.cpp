// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// How well everything that the popover and the panel show stands out from what it is painted on, measured on
// the painted picture. With TARN_PRINT_CONTRAST in the environment the ratios are printed as a table.

#include <gtest/gtest.h>

#include <QPainter>
#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "ui/widgets/controls.hpp"
#include "ui/menu_bar/menu_bar_icon.hpp"
#include "ui/image_analysis.hpp"
#include "ui/popover_fixture.hpp"
#include "ui/popover/tab_picker.hpp"

namespace tarn {
namespace {

constexpr double readable = 4.5;    ///< for text
constexpr double noticeable = 3.0;  ///< for glyphs, for rings and boxes, and for text that may recede

constexpr QRgb lightBar = 0xf3f3f4;
constexpr QRgb darkBar = 0x1f1f22;

struct Line {
  std::string what;
  double least = 0;
  std::map<bool, double> ratios;  ///< the lowest found, by whether it is dark
};

class PaintedContrast : public ::testing::TestWithParam<const Theme*> {
 protected:
  static void TearDownTestSuite() {
    if (!qEnvironmentVariableIsSet("TARN_PRINT_CONTRAST")) return;
    std::printf("| what | at least | light | dark |\n|---|---:|---:|---:|\n");
    for (Line& line : lines) {
      std::printf("| %s | %.1f | %.2f | %.2f |\n", line.what.c_str(), line.least, line.ratios[false],
                  line.ratios[true]);
    }
  }

  PaintedContrast() {
    stage_.add({"Editor.app", 100, {90 * megabyte, 80 * megabyte}});
    for (int i = 0; i < 9; ++i) {
      stage_.add({"daemon" + std::to_string(i), 200 + i, {static_cast<std::uint64_t>(20 - i) * megabyte}});
    }
    stage_.extras.powerSources = {internalBattery(64, 100)};
    stage_.sweep();
    view_ = &stage_.showView(*GetParam());
    view_->activateWindow();
    PopoverStage::settle();
  }

  void expectAtLeast(double least, double ratio, const std::string& what) {
    EXPECT_GE(ratio, least) << what;
    auto line = std::find_if(lines.begin(), lines.end(), [&](const Line& one) { return one.what == what; });
    if (line == lines.end()) line = lines.insert(line, {what, least, {}});
    const auto known = line->ratios.try_emplace(isDark_, ratio).first;
    known->second = std::min(known->second, ratio);
  }

  QRect frame(const QWidget& widget) { return frameIn(*view_, widget); }
  QImage picture(const QRect& part) { return enlarged(*view_, part); }

  void expectTexts(const QWidget& part, const std::string& where) {
    const std::map<QPalette::ColorRole, std::string> styles{
        {paletteRole(TextStyle::primary), "primary text"},
        {paletteRole(TextStyle::secondary), "secondary text"},
        {paletteRole(TextStyle::tertiary), "tertiary text"}};
    for (const QLabel* label : labelsOf(part)) {
      if (label->text().trimmed().isEmpty()) continue;
      SCOPED_TRACE(label->text().toStdString());
      const bool recedes = label->foregroundRole() == paletteRole(TextStyle::tertiary);
      const QRect text = frame(*label).adjusted(0, 2, 0, -2);  // without the ring of a row
      expectAtLeast(recedes ? noticeable : readable, inkContrast(picture(text)),
                    styles.at(label->foregroundRole()) + where);
    }
  }

  void expectGlyphs(const QWidget& part, const std::string& where) {
    for (const GlyphView* glyph : part.findChildren<GlyphView*>()) {
      if (!glyph->isVisible() || glyph->symbolName().isEmpty()) continue;
      SCOPED_TRACE(glyph->symbolName().toStdString());
      const bool recedes = glyph->color() == GlyphView::Color(TextStyle::tertiary);
      expectAtLeast(noticeable, inkContrast(picture(frame(*glyph))),
                    (recedes ? "chevrons" : "glyphs of rows") + where);
    }
  }

  void expectControl(const QWidget& control, const std::string& what) {
    constexpr int edge = 3;  // without the control's outline
    const QRect inside = frame(control).adjusted(edge, edge, -edge, -edge);
    expectAtLeast(readable, inkContrast(picture(inside)), what);
  }

  /// A ring's left side lies within `width` points from `start`, which is relative to the control.
  void expectRing(const QWidget& control, int start, int width, const std::string& what) {
    const QRect around = frame(control);
    const QRect strip(around.left() + start, around.center().y() - 2, width, 4);
    expectAtLeast(noticeable, contrastWithNeighbors(picture(strip), GetParam()->focusRing), what);
  }

  static void focus(QWidget& widget) {
    widget.setFocus(Qt::TabFocusReason);
    PopoverStage::settle();
    ASSERT_TRUE(widget.hasFocus());
  }

  PopoverStage stage_;
  PopoverView* view_ = nullptr;
  const bool isDark_ = GetParam() == &Theme::dark();

 private:
  inline static std::vector<Line> lines;
};

TEST_P(PaintedContrast, SufficesForTheTextsOfEveryTab) {
  click(*rowNamed(*view_, "Editor")->button());
  expectTexts(*view_, "");
  choose(*view_, "CPU");
  expectTexts(*view_, "");
  choose(*view_, "System");
  expectTexts(*view_, "");
  stage_.sweep();
  expectTexts(*view_, "");
}

TEST_P(PaintedContrast, SufficesForTheVerdictsGlyphInEveryTint) {
  auto* glyph = view_->findChild<GlyphView*>();
  const std::vector<std::pair<Tint, std::string>> tints{
      {Tint::green, "green"}, {Tint::orange, "orange"}, {Tint::red, "red"}, {Tint::secondary, "grey"}};
  for (const auto& [tint, name] : tints) {
    glyph->setSymbol(QStringLiteral("memorychip"), tint);
    expectAtLeast(noticeable, inkContrast(picture(frame(*glyph))), "verdict's glyph, " + name);
  }
}

TEST_P(PaintedContrast, SufficesOnRowsInEveryState) {
  for (AppRow* row : shownRows(*view_)) {
    AppRowButton* button = row->button();
    expectGlyphs(*button, "");
    if (!button->isEnabled()) continue;
    const QRect corner(frame(*button).topLeft(), QSize(4, 1));
    const QColor plain = colorsOf(picture(corner)).front().color;
    button->setAttribute(Qt::WA_UnderMouse);
    for (const bool isDown : {false, true}) {
      button->setDown(isDown);
      ASSERT_NE(colorsOf(picture(corner)).front().color, plain) << "it is not highlighted";
      expectTexts(*button, " of a row under the pointer");
      expectGlyphs(*button, " under the pointer");
    }
    button->setDown(false);
    button->setAttribute(Qt::WA_UnderMouse, false);
    focus(*button);
    ASSERT_NE(colorsOf(picture(corner)).front().color, plain) << "it is not highlighted";
    expectTexts(*button, " of a row with the focus");
    expectGlyphs(*button, " with the focus");
    expectRing(*button, -8, 8, "focus ring of a row");
  }
}

TEST_P(PaintedContrast, SufficesOnTabsInEveryState) {
  const auto segments = view_->findChildren<TabSegment*>();
  expectControl(*segments[0], "chosen tab");
  expectControl(*segments[1], "another tab");
  segments[1]->setAttribute(Qt::WA_UnderMouse);
  expectControl(*segments[1], "another tab under the pointer");
  focus(*segments[0]);
  expectControl(*segments[0], "chosen tab");
  expectRing(*segments[0], -2, 8, "focus ring of the chosen tab");
}

TEST_P(PaintedContrast, SufficesOnTheCheckboxInEveryState) {
  auto* toggle = view_->findChild<CheckBox*>();
  const QRect all = frame(*toggle);
  const QRect box(all.left(), all.center().y() - 6, 14, 14);
  const QRect label = all.adjusted(20, 2, -4, -2);
  const auto expectBox = [&](const QColor& ink, const std::string& what) {
    expectAtLeast(noticeable, contrastWithNeighbors(picture(box.adjusted(-4, -4, 2, 4)), ink), what);
    expectAtLeast(readable, inkContrast(picture(label)), "checkbox's label");
  };
  expectBox(GetParam()->tertiary, "box without a tick");
  toggle->setAttribute(Qt::WA_UnderMouse);
  expectBox(GetParam()->secondary, "box without a tick, under the pointer");
  focus(*toggle);
  expectRing(*toggle, 14, 6, "focus ring of the checkbox");
  toggle->setChecked(true);
  expectBox(GetParam()->accent, "box with a tick");
  expectAtLeast(noticeable, inkContrast(picture(box.adjusted(2, 2, -2, -2))), "tick");
  expectRing(*toggle, 14, 6, "focus ring of the checkbox");
}

TEST_P(PaintedContrast, SufficesOnQuitInEveryState) {
  auto* quit = view_->findChild<PillButton*>();
  expectControl(*quit, "Quit");
  focus(*quit);
  expectRing(*quit, -3, 8, "focus ring of Quit");
  quit->setDown(true);
  expectControl(*quit, "Quit, pressed or under the pointer");
  expectRing(*quit, -3, 8, "focus ring of Quit, pressed");
}

TEST_P(PaintedContrast, SufficesOnTheLinkInEveryState) {
  auto* link = view_->findChild<LinkButton*>();
  expectAtLeast(readable, inkContrast(picture(frame(*link))), "link");
  link->setAttribute(Qt::WA_UnderMouse);
  expectAtLeast(readable, inkContrast(picture(frame(*link))), "link");
  focus(*link);
  const QRect bottom(frame(*link).bottomLeft() - QPoint(0, 1), QSize(link->width(), 4));
  expectAtLeast(noticeable, contrastWithNeighbors(picture(bottom), GetParam()->focusRing),
                "focus line of the link");
}

TEST_P(PaintedContrast, SufficesForTheCircleInAPanel) {
  const std::vector<std::pair<Tint, std::string>> tints{
      {Tint::green, "green"}, {Tint::orange, "orange"}, {Tint::red, "red"}};
  for (const auto& [tint, name] : tints) {
    for (const auto* symbol : {"circle", "circle.lefthalf.filled", "circle.fill"}) {
      constexpr int side = 88;
      QImage panel(side, side, QImage::Format_RGB32);
      panel.fill(QColor(isDark_ ? darkBar : lightBar));
      QPainter(&panel).drawImage(0, 0, MenuBarIcon::image(symbol, MenuBarIcon::color(tint), side));
      expectAtLeast(noticeable, inkContrast(panel), "circle in a panel, " + name);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Themes, PaintedContrast, ::testing::Values(&Theme::light(), &Theme::dark()),
                         [](const auto& run) {
                           return run.param == &Theme::dark() ? std::string("Dark") : std::string("Light");
                         });

}  // namespace
}  // namespace tarn
