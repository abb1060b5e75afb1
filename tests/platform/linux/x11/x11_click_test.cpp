// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <memory>
#include <optional>
#include <vector>

#include "platform/linux/x11/private_x_server.hpp"
#include "platform/linux/x11/x11_qt_connection.hpp"
#include "platform/linux/x11/x11_test_client.hpp"

namespace tarn {
namespace {

class X11ClickTest : public testing::Test {
 protected:
  X11ClickTest() { client_.warpPointer(5, 5); }

  X11ClickState query(const std::vector<ScreenScale>& screens = {{QRect(0, 0, 200, 200), 1.0}}) {
    return queryX11ClickState(connection_.get(), screens);
  }

  test::PrivateXServer server_;
  test::X11TestClient client_{server_.display()};

 private:
  std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_{
      xcb_connect(server_.display().c_str(), nullptr), &xcb_disconnect};
};

TEST_F(X11ClickTest, ReportsWhetherACompositorRuns) {
  EXPECT_FALSE(query().hasCompositor);
  client_.setSelectionOwned("_NET_WM_CM_S0", true);
  EXPECT_TRUE(query().hasCompositor);
  client_.setSelectionOwned("_NET_WM_CM_S0", false);
  EXPECT_FALSE(query().hasCompositor);
}

TEST_F(X11ClickTest, ReportsThePointerAndTheWindowBelowIt) {
  EXPECT_EQ(query().pointer, QPoint(5, 5));
  EXPECT_EQ(query().windowUnderPointer, std::nullopt);
  client_.mapAt(QRect(20, 30, 100, 40));
  EXPECT_EQ(query().windowUnderPointer, std::nullopt);
  client_.warpPointer(50, 60);
  EXPECT_EQ(query().pointer, QPoint(50, 60));
  EXPECT_EQ(query().windowUnderPointer, QRect(20, 30, 100, 40));
}

TEST_F(X11ClickTest, ConvertsToTheCoordinatesOfTheScreenThatThePointerIsOn) {
  client_.mapAt(QRect(120, 30, 60, 40));
  client_.warpPointer(140, 60);
  const std::vector<ScreenScale> screens{{QRect(0, 0, 100, 200), 1.0}, {QRect(100, 0, 50, 100), 2.0}};
  EXPECT_EQ(query(screens).pointer, QPoint(120, 30));
  EXPECT_EQ(query(screens).windowUnderPointer, QRect(110, 15, 30, 20));
}

TEST_F(X11ClickTest, ReportsNoPositionsWhenThePointerIsOnNoScreen) {
  client_.mapAt(QRect(0, 0, 200, 200));
  EXPECT_EQ(query({}).pointer, std::nullopt);
  EXPECT_EQ(query({{QRect(100, 0, 100, 200), 1.0}}).windowUnderPointer, std::nullopt);
}

TEST_F(X11ClickTest, HasDefaultValuesAfterTheServerStopped) {
  client_.setSelectionOwned("_NET_WM_CM_S0", true);
  ASSERT_TRUE(query().hasCompositor);
  server_.stop();
  EXPECT_FALSE(query().hasCompositor);
  EXPECT_EQ(query().pointer, std::nullopt);
}

}  // namespace
}  // namespace tarn
