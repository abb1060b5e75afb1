// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The popover on right-to-left desktops, and names of any script.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QGuiApplication>
#include <QImage>
#include <QStyle>
#include <algorithm>
#include <string>
#include <vector>

#include "ui/image_analysis.hpp"
#include "ui/popover_fixture.hpp"

namespace tarn {
namespace {

const QStringList tabs{"Memory", "CPU", "System"};

class PopoverDirection : public ::testing::TestWithParam<Qt::LayoutDirection> {
 protected:
  PopoverDirection() { QGuiApplication::setLayoutDirection(GetParam()); }
  ~PopoverDirection() override { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }
};

/// A popover with an expanded row and all rows of the System tab.
class Popover {
 public:
  explicit Popover(Qt::LayoutDirection direction) {
    QGuiApplication::setLayoutDirection(direction);
    addMany(fixture_, 12);
    fixture_.add({"Editor.app", 100, {400 * megabyte, 100 * megabyte}});
    fixture_.extras.powerSources = {internalBattery(64, 100)};
    fixture_.sweep();
    view_ = &fixture_.showView();
    click(*rowNamed(*view_, "Editor")->button());
  }
  ~Popover() { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }

  QWidget& show(const QString& tab) {
    selectTab(*view_, tab);
    fixture_.sweep();
    return *view_;
  }

 private:
  PopoverFixture fixture_;
  PopoverView* view_ = nullptr;
};

std::vector<QWidget*> shownWidgets(const QWidget& view) {
  std::vector<QWidget*> shown;
  for (QWidget* widget : view.findChildren<QWidget*>()) {
    if (widget->isVisible()) shown.push_back(widget);
  }
  return shown;
}

/// The visible texts, glyphs and controls, without their containers.
std::vector<QWidget*> shownLeafWidgets(const QWidget& view) {
  std::vector<QWidget*> widgets = shownWidgets(view);
  std::erase_if(widgets, [](const QWidget* widget) {
    const auto* label = qobject_cast<const QLabel*>(widget);
    if (label != nullptr) return label->text().trimmed().isEmpty();
    const bool isControl =
        qobject_cast<const QAbstractButton*>(widget) != nullptr && widget->layout() == nullptr;
    return !isControl && qobject_cast<const GlyphView*>(widget) == nullptr;
  });
  return widgets;
}

struct Frames {
  std::vector<QRect> mirrored;  ///< of widgets that follow the desktop's direction
  std::vector<QRect> kept;      ///< of widgets that are always left to right
};

Frames framesOf(const QWidget& view, const std::vector<QWidget*>& widgets, const std::vector<bool>& isKept) {
  Frames frames;
  for (std::size_t i = 0; i < widgets.size(); ++i) {
    (isKept[i] ? frames.kept : frames.mirrored).push_back(frameIn(view, *widgets[i]));
  }
  return frames;
}

TEST(RightToLeft, MirrorsAllWidgetsExceptTheAboutLine) {
  for (const QString& tab : tabs) {
    SCOPED_TRACE(tab.toStdString());
    std::vector<bool> isKept;
    Frames mirrored;
    {
      Popover popover(Qt::RightToLeft);
      const QWidget& view = popover.show(tab);
      const auto widgets = shownWidgets(view);
      for (const QWidget* widget : widgets) isKept.push_back(!widget->isRightToLeft());
      mirrored = framesOf(view, widgets, isKept);
      for (QRect& frame : mirrored.mirrored) {
        frame = QStyle::visualRect(Qt::RightToLeft, view.rect(), frame);
      }
    }
    Popover popover(Qt::LeftToRight);
    const QWidget& view = popover.show(tab);
    const auto widgets = shownWidgets(view);
    ASSERT_EQ(widgets.size(), isKept.size());
    const Frames plain = framesOf(view, widgets, isKept);
    EXPECT_EQ(mirrored.mirrored, plain.mirrored);
    EXPECT_EQ(mirrored.kept, plain.kept);
    EXPECT_EQ(plain.kept.size(), 4U) << "the about line and its three widgets";
  }
}

TEST(RightToLeft, PointsChevronsOfCollapsedRowsToTheLeft) {
  Popover popover(Qt::RightToLeft);
  const QWidget& view = popover.show("Memory");
  const auto chevron = [&](const char* name) {
    return rowNamed(view, name)->button()->findChildren<GlyphView*>().back()->symbolName();
  };
  EXPECT_EQ(chevron("App0"), "chevron.left");
  EXPECT_EQ(chevron("Editor"), "chevron.down");
}

TEST_P(PopoverDirection, KeepsWidgetsApartAndInsideThePadding) {
  Popover popover(GetParam());
  for (const QString& tab : tabs) {
    const QWidget& view = popover.show(tab);
    const auto widgets = shownLeafWidgets(view);
    ASSERT_GT(widgets.size(), 10U);
    for (std::size_t i = 0; i < widgets.size(); ++i) {
      SCOPED_TRACE(tab.toStdString() + " " + std::to_string(i));
      const QRect frame = frameIn(view, *widgets[i]);
      EXPECT_TRUE(view.rect().adjusted(14, 14, -14, -14).contains(frame));
      const auto* figure = qobject_cast<const FigureLabel*>(widgets[i]);
      EXPECT_TRUE(figure == nullptr || frame.width() >= figure->sizeHint().width());
      for (std::size_t j = 0; j < i; ++j) {
        EXPECT_FALSE(frame.intersects(frameIn(view, *widgets[j]))) << j;
      }
    }
  }
}

struct LongName {
  QString text;
  bool endsAtLeft = false;
};

TEST_P(PopoverDirection, ElidesLongNamesOfAnyScriptAtTheirEnd) {
  const std::vector<LongName> names{{QString("Wonderful ").repeated(20)},
                                    {QString("漢字").repeated(60)},
                                    {QString("a\u0301\u0302\u0303\u0304\u0305").repeated(40)},
                                    {QString("שלוםעולם").repeated(25), true},
                                    {QString("مرحبا ").repeated(30), true}};
  PopoverFixture fixture;
  std::int32_t pid = 100;
  for (const LongName& name : names) {
    fixture.machine.processes.push_back(
        {.pid = pid,
         .usage = ProcessUsage{.footprint = static_cast<std::uint64_t>(900 - pid) * megabyte},
         .systemName = name.text.toStdString()});
    ++pid;
  }
  fixture.sweep();
  PopoverView& view = fixture.showView();
  const auto rows = shownRows(view);
  ASSERT_EQ(rows.size(), names.size());
  for (AppRow* row : rows) click(*row->button());
  const QImage image = view.grab().toImage();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(names[i].text.left(8).toStdString());
    // The frame as on a left-to-right desktop.
    const auto unmirrored = [&](const QWidget& widget) {
      return QStyle::visualRect(GetParam(), view.rect(), frameIn(view, widget));
    };
    const QLabel* name = labelsOf(*rows[i]->button()).front();
    const FigureLabel* figure = rows[i]->button()->findChild<FigureLabel*>();
    EXPECT_EQ(rows[i]->button()->height(), 18);
    EXPECT_EQ(unmirrored(*figure).right(), 305 - 18);  // chevron 10, gap 8
    EXPECT_EQ(figure->size(), figure->sizeHint());
    EXPECT_EQ(unmirrored(*name).left(), 14 + 26);  // padding 14, icon 18, gap 8
    EXPECT_EQ(unmirrored(*name).right() + 1 + 8, unmirrored(*figure).left());
    EXPECT_TRUE(endsInDot(image.copy(frameIn(view, *name)), names[i].endsAtLeft, Theme::light().background));
    ASSERT_EQ(linesOf(*rows[i]).size(), 1U);
    const ProcessLineView* line = linesOf(*rows[i]).front();
    const auto labels = labelsOf(*line);
    EXPECT_EQ(line->height(), 14);
    EXPECT_EQ(unmirrored(*labels[2]).right(), 305);
    EXPECT_LE(unmirrored(*labels[0]).right() + 1 + 6, unmirrored(*labels[1]).left());
    EXPECT_LT(unmirrored(*labels[1]).right(), unmirrored(*labels[2]).left());
    EXPECT_EQ(labels[1]->width(), labels[1]->sizeHint().width());
  }
}

INSTANTIATE_TEST_SUITE_P(LayoutDirections, PopoverDirection,
                         ::testing::Values(Qt::LeftToRight, Qt::RightToLeft), [](const auto& test) {
                           return test.param == Qt::RightToLeft ? std::string("RightToLeft")
                                                                : std::string("LeftToRight");
                         });

}  // namespace
}  // namespace tarn
