// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/accessibility.hpp"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QApplication>
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ui/popover/popover_window.hpp"
#include "ui/popover/tab_picker.hpp"
#include "ui/popover_fixture.hpp"
#include "ui/widgets/controls.hpp"

namespace tarn {
namespace {

QAccessibleInterface* accessible(QObject* object) {
  return QAccessible::queryAccessibleInterface(object);
}

QString nameOf(const QAccessibleInterface* element) {
  return element->text(QAccessible::Name);
}

class AccessibilityTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { installAccessibility(); }

  AccessibilityTest() {
    for (int i = 0; i < 9; ++i) {
      const auto size = static_cast<std::uint64_t>(20 - i) * megabyte;
      fixture_.add({"App" + std::to_string(i) + ".app", 100 + 10 * i, {size, megabyte}});
    }
    fixture_.sweep();
    fixture_.makeView();
    window_ = std::make_unique<PopoverWindow>(fixture_.view.release());
    window_->setTheme(Theme::light());
    window_->open(PopoverStyle::popup, {QPoint(400, 10)}, {});
    PopoverFixture::settle();
  }

  ~AccessibilityTest() override { window_.reset(); }

  AppRow* firstRow() { return shownRows(*window_).front(); }

  /// Calls `visit` with every visible element under the window.
  void visitAll(const std::function<void(QAccessibleInterface*)>& visit) {
    const std::function<void(QAccessibleInterface*)> descend = [&](QAccessibleInterface* element) {
      ASSERT_NE(element, nullptr);
      visit(element);
      for (int i = 0; i < element->childCount(); ++i) descend(element->child(i));
    };
    descend(accessible(window_.get()));
  }

  PopoverFixture fixture_;
  std::unique_ptr<PopoverWindow> window_;
};

TEST_F(AccessibilityTest, ListsThePopoverAmongTheApplicationsWindowsWhileItIsShown) {
  QApplication::setApplicationDisplayName("Tarn");
  QAccessibleInterface* application = accessible(qApp);
  ASSERT_NE(application, nullptr);
  EXPECT_EQ(application->role(), QAccessible::Application);
  EXPECT_EQ(nameOf(application), "Tarn");
  ASSERT_EQ(application->childCount(), 1);
  EXPECT_EQ(application->child(0)->object(), window_.get());
  EXPECT_EQ(application->indexOfChild(accessible(window_.get())), 0);
  EXPECT_EQ(application->child(1), nullptr);
  EXPECT_EQ(nameOf(application->child(0)), "Tarn");
  window_->close();
  EXPECT_EQ(application->childCount(), 0);
}

TEST_F(AccessibilityTest, PresentsThePopoverAsADialog) {
  EXPECT_EQ(accessible(window_.get())->role(), QAccessible::Dialog);
  EXPECT_EQ(accessible(window_.get())->childCount(), 1);
}

TEST_F(AccessibilityTest, PresentsRowsAsButtonsNamedByNameAndFigure) {
  QAccessibleInterface* button = accessible(firstRow()->button());
  EXPECT_EQ(button->role(), QAccessible::Button);
  EXPECT_EQ(nameOf(button), "App0, 21 MB");
  EXPECT_EQ(button->text(QAccessible::Description), "2 background processes");
  EXPECT_TRUE(button->state().focusable);
  EXPECT_TRUE(button->state().expandable);
  EXPECT_TRUE(button->state().collapsed);
  EXPECT_FALSE(button->state().expanded);
}

TEST_F(AccessibilityTest, OpensAndClosesARowByItsPressAction) {
  QAccessibleInterface* button = accessible(firstRow()->button());
  QAccessibleActionInterface* actions = button->actionInterface();
  ASSERT_NE(actions, nullptr);
  ASSERT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
  actions->doAction(QAccessibleActionInterface::pressAction());
  PopoverFixture::settle();
  EXPECT_EQ(linesOf(*firstRow()).size(), 2U);
  EXPECT_TRUE(button->state().expanded);
  EXPECT_FALSE(button->state().collapsed);
  actions->doAction(QAccessibleActionInterface::pressAction());
  PopoverFixture::settle();
  EXPECT_TRUE(linesOf(*firstRow()).empty());
  EXPECT_TRUE(button->state().collapsed);
}

TEST_F(AccessibilityTest, OffersNoPressActionOnTheSummaryRow) {
  AppRow* summary = shownRows(*window_).back();
  QAccessibleInterface* button = accessible(summary->button());
  EXPECT_EQ(nameOf(button), "Everything else, 13 MB");
  EXPECT_TRUE(button->state().disabled);
  EXPECT_FALSE(button->state().expandable);
  EXPECT_FALSE(button->state().expanded);
  EXPECT_FALSE(button->state().collapsed);
  EXPECT_FALSE(button->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
}

TEST_F(AccessibilityTest, PresentsTheTabsAsRadioButtonsInAGroup) {
  QAccessibleInterface* picker = accessible(window_->findChild<TabPicker*>());
  EXPECT_EQ(picker->role(), QAccessible::Grouping);
  EXPECT_EQ(nameOf(picker), "View");
  const std::vector<QString> names{"Memory", "CPU", "System"};
  ASSERT_EQ(picker->childCount(), 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(picker->child(i)->role(), QAccessible::RadioButton);
    EXPECT_EQ(nameOf(picker->child(i)), names[static_cast<std::size_t>(i)]);
    EXPECT_EQ(picker->child(i)->state().checked, i == 0);
  }
}

TEST_F(AccessibilityTest, PresentsTheFootersControls) {
  QAccessibleInterface* link = accessible(window_->findChild<LinkButton*>());
  EXPECT_EQ(link->role(), QAccessible::Link);
  EXPECT_EQ(nameOf(link), "tarn.example");
  EXPECT_TRUE(link->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
  QAccessibleInterface* box = accessible(window_->findChild<CheckBox*>());
  EXPECT_EQ(box->role(), QAccessible::CheckBox);
  EXPECT_EQ(nameOf(box), "Show frontmost app in menu bar");
  QAccessibleInterface* quit = accessible(window_->findChild<PillButton*>());
  EXPECT_EQ(quit->role(), QAccessible::Button);
  EXPECT_EQ(nameOf(quit), "Quit");
}

TEST_F(AccessibilityTest, NamesLabelsByTheirTextWithOrdinarySpaces) {
  std::vector<QString> names;
  visitAll([&](const QAccessibleInterface* element) {
    if (element->role() == QAccessible::StaticText) names.push_back(nameOf(element));
  });
  for (const QString& text :
       {QString("Your Mac has memory to spare."), QString("App0"), QString("2 background processes"),
        QString("21 MB"), QString("Wired 0 bytes · Compressed 0 bytes · Cached files 0 bytes · Swap 0 bytes"),
        QString("Made with ❤️ by "), QString(" · v1.0")}) {
    EXPECT_NE(std::find(names.begin(), names.end(), text), names.end()) << text.toStdString();
  }
}

TEST_F(AccessibilityTest, GivesEveryFocusableElementAName) {
  int focusable = 0;
  visitAll([&](const QAccessibleInterface* element) {
    if (!element->state().focusable || element->state().disabled || element->state().invisible) return;
    ++focusable;
    EXPECT_FALSE(nameOf(element).trimmed().isEmpty()) << element->object()->metaObject()->className();
  });
  EXPECT_GE(focusable, 8 + 1 + 3);  // rows, selected tab, controls of the footer
}

TEST_F(AccessibilityTest, GivesGlyphsNoName) {
  const auto glyphs = window_->findChildren<GlyphView*>();
  EXPECT_GE(glyphs.size(), 1 + 2 * 9);  // status; icon and chevron of each row
  for (GlyphView* glyph : glyphs) {
    EXPECT_EQ(nameOf(accessible(glyph)), "");
    EXPECT_FALSE(accessible(glyph)->state().focusable);
  }
}

TEST_F(AccessibilityTest, ReadsRowsFromTopToBottom) {
  std::vector<QString> names;
  visitAll([&](const QAccessibleInterface* element) {
    const bool isRow = qobject_cast<AppRowButton*>(element->object()) != nullptr;
    if (isRow) names.push_back(nameOf(element).section(',', 0, 0));
  });
  EXPECT_EQ(names, (std::vector<QString>{"App0", "App1", "App2", "App3", "App4", "App5", "App6", "App7",
                                         "Everything else"}));
}

}  // namespace
}  // namespace tarn
