// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/app_icon_provider.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn {
namespace {

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

TEST(AppIconProvider, AsksOnceEvenForAnIconThatIsNotThere) {
  int asked = 0;
  AppIconProvider provider([&](const std::string&) {
    ++asked;
    return QIcon();
  });
  for (int i = 0; i < 3; ++i) {
    const AppIcon icon = provider.icon(applicationRow("/Applications/Gone.app"), 1);
    EXPECT_TRUE(icon.image.isNull());
    EXPECT_EQ(icon.symbolName, "gearshape.fill");
  }
  EXPECT_EQ(asked, 1);
}

TEST(AppIconProvider, GivesAnImageOfThirtyTwoPointsInTheScreensPixels) {
  AppIconProvider provider([](const std::string&) { return blueIcon(); });
  const AppIcon plain = provider.icon(applicationRow("/Applications/A.app"), 1);
  EXPECT_EQ(plain.image.deviceIndependentSize(), QSizeF(32, 32));
  EXPECT_TRUE(plain.symbolName.isEmpty());
  const AppIcon doubled = provider.icon(applicationRow("/Applications/A.app"), 2);
  EXPECT_EQ(doubled.image.deviceIndependentSize(), QSizeF(32, 32));
  EXPECT_EQ(doubled.image.size(), QSize(64, 64));
}

TEST(AppIconProvider, ShowsASymbolWithoutAskingForWhatHasNoBundle) {
  AppIconProvider provider([](const std::string& path) -> QIcon {
    ADD_FAILURE() << "asked for " << path;
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
