// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QAbstractEventDispatcher>
#include <memory>

#include "platform/linux/x11/private_x_server.hpp"
#include "platform/linux/x11/x11_qt_connection.hpp"
#include "platform/linux/x11/x11_test_client.hpp"

namespace tarn {
namespace {

class X11WorkspaceWatchTest : public testing::Test {
 protected:
  /// Delivers a property change as Qt's X11 platform does.
  static void deliverPropertyChange(xcb_atom_t atom, const QByteArray& eventType = "xcb_generic_event_t") {
    xcb_property_notify_event_t event{};
    event.response_type = XCB_PROPERTY_NOTIFY;
    event.atom = atom;
    QAbstractEventDispatcher::instance()->filterNativeEvent(eventType, &event, nullptr);
  }

  test::PrivateXServer server_;
  test::X11TestClient client_{server_.display()};
  std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_{
      xcb_connect(server_.display().c_str(), nullptr), &xcb_disconnect};
  int switches_ = 0;
};

TEST_F(X11WorkspaceWatchTest, ReportsEachChangeOfTheCurrentDesktop) {
  const X11WorkspaceWatch watch(connection_.get(), [this] { ++switches_; });
  deliverPropertyChange(client_.atom("_NET_CURRENT_DESKTOP"));
  deliverPropertyChange(client_.atom("_NET_CURRENT_DESKTOP"));
  EXPECT_EQ(switches_, 2);
}

TEST_F(X11WorkspaceWatchTest, IgnoresOtherEvents) {
  const X11WorkspaceWatch watch(connection_.get(), [this] { ++switches_; });
  deliverPropertyChange(client_.atom("_NET_ACTIVE_WINDOW"));
  deliverPropertyChange(XCB_ATOM_NONE);
  deliverPropertyChange(client_.atom("_NET_CURRENT_DESKTOP"), "other_event_t");
  EXPECT_EQ(switches_, 0);
}

TEST_F(X11WorkspaceWatchTest, DoesNotReportAfterItsDestruction) {
  {
    const X11WorkspaceWatch watch(connection_.get(), [this] { ++switches_; });
  }
  deliverPropertyChange(client_.atom("_NET_CURRENT_DESKTOP"));
  EXPECT_EQ(switches_, 0);
}

}  // namespace
}  // namespace tarn
