// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Contrast of all texts, glyphs and controls with their background, measured on rendered images. Prints the
// ratios as a table if TARN_PRINT_CONTRAST is set in the environment.

#include <gtest/gtest.h>

#include <QPainter>
#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "ui/image_analysis.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"
#include "ui/popover/tab_picker.hpp"
#include "ui/popover_fixture.hpp"
#include "ui/widgets/controls.hpp"

namespace tarn {
namespace {

constexpr double textContrast = 4.5;     ///< WCAG 2 level AA for text
constexpr double minimumContrast = 3.0;  ///< for glyphs, rings, boxes and tertiary text

// Colours of a light and of a dark desktop panel.
constexpr QRgb lightBar = 0xf3f3f4;
constexpr QRgb darkBar = 0x1f1f22;

struct TableRow {
  std::string what;
  double minimum = 0;
  std::map<bool, double> ratios;  ///< the lowest ratio; key: whether the theme is dark
};

class PaintedContrast : public ::testing::TestWithParam<const Theme*> {
 protected:
  static void TearDownTestSuite() {
    if (!qEnvironmentVariableIsSet("TARN_PRINT_CONTRAST")) return;
    std::printf("| what | at least | light | dark |\n|---|---:|---:|---:|\n");
    for (TableRow& row : table) {
      std::printf("| %s | %.1f | %.2f | %.2f |\n", row.what.c_str(), row.minimum, row.ratios[false],
                  row.ratios[true]);
    }
  }

  PaintedContrast() {
    fixture_.add({"Editor.app", 100, {90 * megabyte, 80 * megabyte}});
    for (int i = 0; i < 9; ++i) {
      fixture_.add({"daemon" + std::to_string(i), 200 + i, {static_cast<std::uint64_t>(20 - i) * megabyte}});
    }
    fixture_.extras.powerSources = {internalBattery(64, 100)};
    fixture_.sweep();
    view_ = &fixture_.showView(*GetParam());
    view_->activateWindow();
    PopoverFixture::settle();
  }

  void expectAtLeast(double minimum, double ratio, const std::string& what) {
    EXPECT_GE(ratio, minimum) << what;
    auto row =
        std::find_if(table.begin(), table.end(), [&](const TableRow& other) { return other.what == what; });
    if (row == table.end()) row = table.insert(row, {what, minimum, {}});
    const auto lowest = row->ratios.try_emplace(isDark_, ratio).first;
    lowest->second = std::min(lowest->second, ratio);
  }

  QRect frame(const QWidget& widget) { return frameIn(*view_, widget); }
  QImage imageOf(const QRect& part) { return enlarged(*view_, part); }

  void expectTexts(const QWidget& part, const std::string& where) {
    const std::map<QPalette::ColorRole, std::string> styles{
        {paletteRole(TextStyle::primary), "primary text"},
        {paletteRole(TextStyle::secondary), "secondary text"},
        {paletteRole(TextStyle::tertiary), "tertiary text"}};
    for (const QLabel* label : labelsOf(part)) {
      if (label->text().trimmed().isEmpty()) continue;
      SCOPED_TRACE(label->text().toStdString());
      const bool isTertiary = label->foregroundRole() == paletteRole(TextStyle::tertiary);
      const QRect text = frame(*label).adjusted(0, 2, 0, -2);  // excludes the row's focus ring
      expectAtLeast(isTertiary ? minimumContrast : textContrast, foregroundContrast(imageOf(text)),
                    styles.at(label->foregroundRole()) + where);
    }
  }

  void expectGlyphs(const QWidget& part, const std::string& where) {
    for (const GlyphView* glyph : part.findChildren<GlyphView*>()) {
      if (!glyph->isVisible() || glyph->symbolName().isEmpty()) continue;
      SCOPED_TRACE(glyph->symbolName().toStdString());
      const bool isTertiary = glyph->color() == GlyphView::Color(TextStyle::tertiary);
      expectAtLeast(minimumContrast, foregroundContrast(imageOf(frame(*glyph))),
                    (isTertiary ? "chevrons" : "symbols of rows") + where);
    }
  }

  void expectControl(const QWidget& control, const std::string& what) {
    constexpr int edge = 3;  // excludes the control's outline
    const QRect inside = frame(control).adjusted(edge, edge, -edge, -edge);
    expectAtLeast(textContrast, foregroundContrast(imageOf(inside)), what);
  }

  /// Expects the left side of the focus ring in a strip that is `width` points wide and begins `start` points
  /// from the control's left edge.
  void expectRing(const QWidget& control, int start, int width, const std::string& what) {
    const QRect bounds = frame(control);
    const QRect strip(bounds.left() + start, bounds.center().y() - 2, width, 4);
    expectAtLeast(minimumContrast, contrastWithNeighbors(imageOf(strip), GetParam()->focusRing), what);
  }

  static void focus(QWidget& widget) {
    widget.setFocus(Qt::TabFocusReason);
    PopoverFixture::settle();
    ASSERT_TRUE(widget.hasFocus());
  }

  PopoverFixture fixture_;
  PopoverView* view_ = nullptr;
  const bool isDark_ = GetParam() == &Theme::dark();

 private:
  inline static std::vector<TableRow> table;
};

TEST_P(PaintedContrast, IsSufficientForTheTextsOfEveryTab) {
  click(*rowNamed(*view_, "Editor")->button());
  expectTexts(*view_, "");
  selectTab(*view_, "CPU");
  expectTexts(*view_, "");
  selectTab(*view_, "System");
  expectTexts(*view_, "");
  fixture_.sweep();
  expectTexts(*view_, "");
}

TEST_P(PaintedContrast, IsSufficientForTheStatusGlyphInEveryTint) {
  auto* glyph = view_->findChild<GlyphView*>();
  const std::vector<std::pair<Tint, std::string>> tints{
      {Tint::green, "green"}, {Tint::orange, "orange"}, {Tint::red, "red"}, {Tint::secondary, "grey"}};
  for (const auto& [tint, name] : tints) {
    glyph->setSymbol(QStringLiteral("memorychip"), tint);
    expectAtLeast(minimumContrast, foregroundContrast(imageOf(frame(*glyph))), "status symbol, " + name);
  }
}

TEST_P(PaintedContrast, IsSufficientOnRowsInEveryState) {
  for (AppRow* row : shownRows(*view_)) {
    AppRowButton* button = row->button();
    expectGlyphs(*button, "");
    if (!button->isEnabled()) continue;
    const QRect corner(frame(*button).topLeft(), QSize(4, 1));
    const QColor plain = colorsOf(imageOf(corner)).front().color;
    button->setAttribute(Qt::WA_UnderMouse);
    for (const bool isDown : {false, true}) {
      button->setDown(isDown);
      ASSERT_NE(colorsOf(imageOf(corner)).front().color, plain) << "not highlighted";
      expectTexts(*button, " of a row under the pointer");
      expectGlyphs(*button, " under the pointer");
    }
    button->setDown(false);
    button->setAttribute(Qt::WA_UnderMouse, false);
    focus(*button);
    ASSERT_NE(colorsOf(imageOf(corner)).front().color, plain) << "not highlighted";
    expectTexts(*button, " of a row with the focus");
    expectGlyphs(*button, " with the focus");
    expectRing(*button, -8, 8, "focus ring of a row");
  }
}

TEST_P(PaintedContrast, IsSufficientOnTabsInEveryState) {
  const auto segments = view_->findChildren<TabSegment*>();
  expectControl(*segments[0], "selected tab");
  expectControl(*segments[1], "another tab");
  segments[1]->setAttribute(Qt::WA_UnderMouse);
  expectControl(*segments[1], "another tab under the pointer");
  focus(*segments[0]);
  expectControl(*segments[0], "selected tab");
  expectRing(*segments[0], -2, 8, "focus ring of the selected tab");
}

TEST_P(PaintedContrast, IsSufficientOnTheCheckboxInEveryState) {
  auto* toggle = view_->findChild<CheckBox*>();
  // The box is 14 points wide; the label begins 20 points from the left edge.
  const QRect bounds = frame(*toggle);
  const QRect box(bounds.left(), bounds.center().y() - 6, 14, 14);
  const QRect label = bounds.adjusted(20, 2, -4, -2);
  const auto expectBox = [&](const QColor& color, const std::string& what) {
    expectAtLeast(minimumContrast, contrastWithNeighbors(imageOf(box.adjusted(-4, -4, 2, 4)), color), what);
    expectAtLeast(textContrast, foregroundContrast(imageOf(label)), "checkbox's label");
  };
  expectBox(GetParam()->tertiary, "box without a tick");
  toggle->setAttribute(Qt::WA_UnderMouse);
  expectBox(GetParam()->secondary, "box without a tick, under the pointer");
  focus(*toggle);
  expectRing(*toggle, 14, 6, "focus ring of the checkbox");
  toggle->setChecked(true);
  expectBox(GetParam()->accent, "box with a tick");
  expectAtLeast(minimumContrast, foregroundContrast(imageOf(box.adjusted(2, 2, -2, -2))), "tick");
  expectRing(*toggle, 14, 6, "focus ring of the checkbox");
}

TEST_P(PaintedContrast, IsSufficientOnTheQuitButtonInEveryState) {
  auto* quit = view_->findChild<PillButton*>();
  expectControl(*quit, "Quit");
  focus(*quit);
  expectRing(*quit, -3, 8, "focus ring of Quit");
  quit->setDown(true);
  expectControl(*quit, "Quit, pressed or under the pointer");
  expectRing(*quit, -3, 8, "focus ring of Quit, pressed");
}

TEST_P(PaintedContrast, IsSufficientOnTheLinkInEveryState) {
  auto* link = view_->findChild<LinkButton*>();
  expectAtLeast(textContrast, foregroundContrast(imageOf(frame(*link))), "link");
  link->setAttribute(Qt::WA_UnderMouse);
  expectAtLeast(textContrast, foregroundContrast(imageOf(frame(*link))), "link");
  focus(*link);
  const QRect bottom(frame(*link).bottomLeft() - QPoint(0, 1), QSize(link->width(), 4));
  expectAtLeast(minimumContrast, contrastWithNeighbors(imageOf(bottom), GetParam()->focusRing),
                "focus line of the link");
}

TEST_P(PaintedContrast, IsSufficientForTheCircleInAPanel) {
  const std::vector<std::pair<Tint, std::string>> tints{
      {Tint::green, "green"}, {Tint::orange, "orange"}, {Tint::red, "red"}};
  for (const auto& [tint, name] : tints) {
    for (const auto* symbol : {"circle", "circle.lefthalf.filled", "circle.fill"}) {
      constexpr int side = 88;
      QImage panel(side, side, QImage::Format_RGB32);
      panel.fill(QColor(isDark_ ? darkBar : lightBar));
      QPainter(&panel).drawImage(0, 0, MenuBarIcon::image(symbol, MenuBarIcon::color(tint), side));
      expectAtLeast(minimumContrast, foregroundContrast(panel), "circle in a panel, " + name);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Themes, PaintedContrast, ::testing::Values(&Theme::light(), &Theme::dark()),
                         [](const auto& test) {
                           return test.param == &Theme::dark() ? std::string("Dark") : std::string("Light");
                         });

}  // namespace
}  // namespace tarn
