// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/desktop/qt_adapters.hpp"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QImage>
#include <vector>

namespace tarn::macos {
namespace {

/// The calls that a FakeStatusItem received.
struct Shown {
  std::vector<StatusItemContent> contents;
  std::function<void(ScreenPoint)> click;
  bool isDestroyed = false;
};

class FakeStatusItem final : public StatusItem {
 public:
  explicit FakeStatusItem(Shown& shown) : shown_(shown) {}
  FakeStatusItem(const FakeStatusItem&) = delete;
  FakeStatusItem& operator=(const FakeStatusItem&) = delete;
  ~FakeStatusItem() override { shown_.isDestroyed = true; }
  void show(const StatusItemContent& content) override { shown_.contents.push_back(content); }

 private:
  Shown& shown_;
};

class MenuBarStatusItemTest : public ::testing::Test {
 protected:
  MenuBarStatusItemTest() {
    label_.symbolName = QStringLiteral("circle");
    label_.accessibilityText = QStringLiteral("Memory normal");
    label_.toolTip.status = QStringLiteral("Your Mac has memory to spare.");
  }

  Shown shown_;
  MenuBarStatusItem item_{[this](std::function<void(ScreenPoint)> clicked) {
    shown_.click = std::move(clicked);
    return std::make_unique<FakeStatusItem>(shown_);
  }};
  MenuBarLabel label_;
};

TEST_F(MenuBarStatusItemTest, ShowsTheSymbolAndAnAccessibilityLabelWithoutATitle) {
  item_.show(label_);
  ASSERT_EQ(shown_.contents.size(), 1U);
  const StatusItemContent& content = shown_.contents.back();
  EXPECT_EQ(content.symbolName, "circle");
  EXPECT_EQ(content.color, StatusColor::green);
  EXPECT_EQ(content.accessibilityLabel, "Memory normal");
  EXPECT_EQ(content.title, std::nullopt);
  EXPECT_EQ(content.toolTip, "Your Mac has memory to spare.");
}

TEST_F(MenuBarStatusItemTest, ShowsTheTitleAndTheDetailInTheToolTip) {
  label_.text = QStringLiteral("1.5 GB");
  label_.toolTip.detail = QStringLiteral("Wired 1 GB");
  item_.show(label_);
  EXPECT_EQ(shown_.contents.back().title, "1.5 GB");
  EXPECT_EQ(shown_.contents.back().toolTip, "Your Mac has memory to spare.\nWired 1 GB");
}

TEST_F(MenuBarStatusItemTest, ColorsTheSymbolByTheTint) {
  const auto color = [this](Tint tint) {
    label_.tint = tint;
    return statusItemContent(label_).color;
  };
  EXPECT_EQ(color(Tint::green), StatusColor::green);
  EXPECT_EQ(color(Tint::orange), StatusColor::orange);
  EXPECT_EQ(color(Tint::red), StatusColor::red);
}

TEST_F(MenuBarStatusItemTest, EmitsHostAppearedOnceAfterTheFirstLabel) {
  int appeared = 0;
  QObject::connect(&item_, &MenuBarItem::hostAppeared, [&appeared] { ++appeared; });
  item_.show(label_);
  EXPECT_EQ(appeared, 0) << "the caller may not be connected yet";
  QCoreApplication::sendPostedEvents(&item_);
  EXPECT_EQ(appeared, 1);
  label_.tint = Tint::red;
  item_.show(label_);
  QCoreApplication::sendPostedEvents(&item_);
  EXPECT_EQ(appeared, 1);
}

TEST_F(MenuBarStatusItemTest, DoesNotUpdateTheItemForAnUnchangedLabel) {
  item_.show(label_);
  item_.show(label_);
  EXPECT_EQ(shown_.contents.size(), 1U);
  label_.tint = Tint::red;
  item_.show(label_);
  EXPECT_EQ(shown_.contents.size(), 2U);
}

TEST_F(MenuBarStatusItemTest, EmitsActivatedWithTheRoundedPosition) {
  std::vector<std::optional<QPoint>> clicks;
  QObject::connect(&item_, &MenuBarItem::activated,
                   [&](std::optional<QPoint> position) { clicks.push_back(position); });
  shown_.click({.x = 1200.4, .y = 23.5});
  EXPECT_EQ(clicks, (std::vector<std::optional<QPoint>>{QPoint(1200, 24)}));
}

TEST(MenuBarStatusItem, RemovesTheItemWhenDestroyed) {
  Shown shown;
  {
    const MenuBarStatusItem item(
        [&](const std::function<void(ScreenPoint)>&) { return std::make_unique<FakeStatusItem>(shown); });
    EXPECT_FALSE(shown.isDestroyed);
  }
  EXPECT_TRUE(shown.isDestroyed);
}

/// A square of one half-transparent colour.
Pixels square(int side) {
  Pixels pixels{.width = side, .height = side};
  for (int i = 0; i < side * side; ++i) pixels.rgba.insert(pixels.rgba.end(), {128, 64, 0, 128});
  return pixels;
}

TEST(MakeIcon, HasAnImageForEachScale) {
  const QIcon icon = makeIcon({square(32), square(64)});
  EXPECT_EQ(icon.pixmap(QSize(32, 32), 1).size(), QSize(32, 32));
  const QPixmap scaled = icon.pixmap(QSize(32, 32), 2);
  EXPECT_EQ(scaled.size(), QSize(64, 64));
  const QColor color = scaled.toImage().pixelColor(5, 5);
  EXPECT_NEAR(color.red(), 255, 1);
  EXPECT_NEAR(color.green(), 127, 1);
  EXPECT_EQ(color.blue(), 0);
  EXPECT_EQ(color.alpha(), 128);
}

TEST(MakeIcon, SkipsImagesThatAreEmptyOrTooShort) {
  Pixels truncated = square(64);
  truncated.rgba.resize(10);
  EXPECT_TRUE(makeIcon({Pixels{}, truncated}).isNull());
  EXPECT_FALSE(makeIcon({square(32), truncated}).isNull());
}

}  // namespace
}  // namespace tarn::macos
