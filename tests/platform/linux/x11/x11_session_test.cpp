// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/x11/x11_frontmost.hpp"

#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/x11/private_x_server.hpp"
#include "platform/linux/x11/x11_click.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using Milliseconds = std::chrono::milliseconds;

// A program with a window, and at once the window manager that says which is active.
class WindowClient {
 public:
  explicit WindowClient(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    EXPECT_EQ(xcb_connection_has_error(connection_), 0);
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    window_ = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, root_, 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    sync();
  }
  ~WindowClient() { xcb_disconnect(connection_); }
  WindowClient(const WindowClient&) = delete;
  WindowClient& operator=(const WindowClient&) = delete;

  xcb_window_t window() const { return window_; }
  xcb_window_t root() const { return root_; }

  xcb_atom_t atom(std::string_view name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection_, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  void setNumber(xcb_window_t window, std::string_view name, xcb_atom_t type, std::uint32_t value) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32, 1, &value);
    sync();
  }

  void setText(xcb_window_t window, std::string_view name, std::string_view value) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(value.size()), value.data());
    sync();
  }

  void activate(xcb_window_t window) { setNumber(root_, "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, window); }

  void declareProcess(std::uint32_t pid) { setNumber(window_, "_NET_WM_PID", XCB_ATOM_CARDINAL, pid); }

  void own(std::string_view selection, bool yes) {
    xcb_set_selection_owner(connection_, yes ? window_ : xcb_window_t{XCB_WINDOW_NONE}, atom(selection),
                            XCB_CURRENT_TIME);
    sync();
  }

  void mapAt(const QRect& place) {
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(place.x()), static_cast<std::uint32_t>(place.y()),
        static_cast<std::uint32_t>(place.width()), static_cast<std::uint32_t>(place.height())};
    xcb_configure_window(
        connection_, window_,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
        values.data());
    xcb_map_window(connection_, window_);
    sync();
  }

  void warpPointer(std::int16_t x, std::int16_t y) {
    xcb_warp_pointer(connection_, XCB_WINDOW_NONE, root_, 0, 0, 0, 0, x, y);
    sync();
  }

  void destroyWindow() {
    xcb_destroy_window(connection_, window_);
    sync();
  }

 private:
  // The server has done everything that was asked of it.
  void sync() const {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

  xcb_connection_t* connection_;
  xcb_window_t root_ = 0;
  xcb_window_t window_ = 0;
};

std::string machineName() {
  std::array<char, 256> name{};
  EXPECT_EQ(gethostname(name.data(), name.size() - 1), 0);
  return name.data();
}

X11Session::Clock::time_point soon() {
  return X11Session::Clock::now() + std::chrono::seconds(10);
}

class X11Frontmost : public testing::Test {
 protected:
  std::optional<std::int32_t> pid() { return session_.activeProcess(soon()); }

  test::PrivateXServer server_;
  WindowClient client_{server_.display()};
  X11Session session_{server_.display()};
};

TEST_F(X11Frontmost, IsTheProcessBehindTheActiveWindowWhateverTheWindowClaims) {
  client_.declareProcess(1);
  client_.activate(client_.window());
  EXPECT_EQ(pid(), getpid());
}

TEST_F(X11Frontmost, IsAskedAnewEachTime) {
  EXPECT_EQ(pid(), std::nullopt);
  client_.activate(client_.window());
  EXPECT_EQ(pid(), getpid());
  client_.activate(XCB_WINDOW_NONE);
  EXPECT_EQ(pid(), std::nullopt);
}

TEST_F(X11Frontmost, IsNobodyWhenTheWindowIsGone) {
  client_.activate(client_.window());
  client_.destroyWindow();
  client_.activate(0x12345678);
  EXPECT_EQ(pid(), std::nullopt);
  client_.activate(0xffffffff);
  EXPECT_EQ(pid(), std::nullopt);
}

TEST_F(X11Frontmost, IsNobodyWhenTheManagerTalksNonsense) {
  client_.setText(client_.root(), "_NET_ACTIVE_WINDOW", "nonsense");
  EXPECT_EQ(pid(), std::nullopt);
  client_.setText(client_.root(), "_NET_ACTIVE_WINDOW", "");
  EXPECT_EQ(pid(), std::nullopt);
  client_.setNumber(client_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_CARDINAL, client_.window());
  EXPECT_EQ(pid(), std::nullopt);
  client_.activate(client_.window());
  EXPECT_EQ(pid(), getpid());
}

TEST_F(X11Frontmost, GivesTheProcessWithoutAPath) {
  client_.activate(client_.window());
  const auto source = x11FrontmostApplication(std::make_shared<X11Session>(server_.display()));
  const auto application = source();
  ASSERT_TRUE(application.has_value());
  EXPECT_EQ(application->processIdentifier, getpid());
  EXPECT_EQ(application->bundlePath, std::nullopt);
}

TEST_F(X11Frontmost, IsUnknownWhileTheServerDoesNotAnswer) {
  client_.activate(client_.window());
  const auto source = x11FrontmostApplication(std::make_shared<X11Session>(server_.display()));
  ASSERT_TRUE(source().has_value());
  server_.pause();
  const auto before = X11Session::Clock::now();
  EXPECT_FALSE(source().has_value());
  const auto first = X11Session::Clock::now() - before;
  EXPECT_GE(first, Milliseconds(50));
  EXPECT_LT(first, Milliseconds(1000));
  for (int count = 0; count < 1000; ++count) EXPECT_FALSE(source().has_value());
  EXPECT_LT(X11Session::Clock::now() - before, Milliseconds(3000));
  server_.resume();
  const auto deadline = soon();
  while (!source() && X11Session::Clock::now() < deadline) usleep(1000);
  EXPECT_TRUE(source().has_value());
}

TEST_F(X11Frontmost, FindsAServerAgainThatWasRestarted) {
  client_.activate(client_.window());
  ASSERT_EQ(pid(), getpid());
  server_.stop();
  EXPECT_EQ(pid(), std::nullopt);
  EXPECT_EQ(pid(), std::nullopt);
  const test::PrivateXServer successor({}, server_.display());
  ASSERT_EQ(successor.display(), server_.display());
  WindowClient client(successor.display());
  client.activate(client.window());
  EXPECT_EQ(pid(), getpid());
}

TEST_F(X11Frontmost, KnowsATrayOfTheOlderKind) {
  EXPECT_EQ(session_.hasEmbeddingTray(soon()), false);
  client_.own("_NET_SYSTEM_TRAY_S0", true);
  EXPECT_EQ(session_.hasEmbeddingTray(soon()), true);
  client_.own("_NET_SYSTEM_TRAY_S0", false);
  EXPECT_EQ(session_.hasEmbeddingTray(soon()), false);
  server_.pause();
  EXPECT_EQ(session_.hasEmbeddingTray(X11Session::Clock::now() + Milliseconds(20)), std::nullopt);
  server_.resume();
}

class X11Click : public X11Frontmost {
 protected:
  X11Click() { client_.warpPointer(5, 5); }

  X11ClickState query(const std::vector<ScreenScale>& screens = {{QRect(0, 0, 200, 200), 1.0}}) {
    return queryX11ClickState(connection_.get(), screens);
  }

 private:
  std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_{
      xcb_connect(server_.display().c_str(), nullptr), &xcb_disconnect};
};

TEST_F(X11Click, ReportsWhetherACompositorOwnsItsSelection) {
  EXPECT_FALSE(query().hasCompositor);
  client_.own("_NET_WM_CM_S0", true);
  EXPECT_TRUE(query().hasCompositor);
  client_.own("_NET_WM_CM_S0", false);
  EXPECT_FALSE(query().hasCompositor);
}

TEST_F(X11Click, ReportsThePointerAndTheWindowBelowIt) {
  EXPECT_EQ(query().pointer, QPoint(5, 5));
  EXPECT_EQ(query().windowUnderPointer, std::nullopt);
  client_.mapAt(QRect(20, 30, 100, 40));
  EXPECT_EQ(query().windowUnderPointer, std::nullopt);
  client_.warpPointer(50, 60);
  EXPECT_EQ(query().pointer, QPoint(50, 60));
  EXPECT_EQ(query().windowUnderPointer, QRect(20, 30, 100, 40));
}

TEST_F(X11Click, ConvertsToTheCoordinatesOfTheScreenThatThePointerIsOn) {
  client_.mapAt(QRect(120, 30, 60, 40));
  client_.warpPointer(140, 60);
  const std::vector<ScreenScale> screens{{QRect(0, 0, 100, 200), 1.0}, {QRect(100, 0, 50, 100), 2.0}};
  EXPECT_EQ(query(screens).pointer, QPoint(120, 30));
  EXPECT_EQ(query(screens).windowUnderPointer, QRect(110, 15, 30, 20));
}

TEST_F(X11Click, ReportsNoPositionsWhenThePointerIsOnNoScreen) {
  client_.mapAt(QRect(0, 0, 200, 200));
  EXPECT_EQ(query({}).pointer, std::nullopt);
  EXPECT_EQ(query({{QRect(100, 0, 100, 200), 1.0}}).windowUnderPointer, std::nullopt);
}

TEST_F(X11Click, ReportsNothingWhenTheServerIsGone) {
  client_.own("_NET_WM_CM_S0", true);
  ASSERT_TRUE(query().hasCompositor);
  server_.stop();
  EXPECT_FALSE(query().hasCompositor);
  EXPECT_EQ(query().pointer, std::nullopt);
}

TEST(X11FrontmostWithoutTheResourceExtension, IsWhatTheWindowSaysWhenItIsFromThisMachine) {
  const test::PrivateXServer server({QStringLiteral("-extension"), QStringLiteral("X-Resource")});
  WindowClient client(server.display());
  const auto own = static_cast<std::uint32_t>(getpid());
  X11Session session(server.display());
  client.activate(client.window());
  client.declareProcess(own);
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
  client.setText(client.window(), "WM_CLIENT_MACHINE", "elsewhere.example");
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
  client.setText(client.window(), "WM_CLIENT_MACHINE", machineName());
  EXPECT_EQ(session.activeProcess(soon()), getpid());
  client.declareProcess(0);
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
  client.declareProcess(0xffffffff);
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
  client.setText(client.window(), "_NET_WM_PID", "4242");
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
}

TEST(X11FrontmostWithoutTheResourceExtension, IsTheProcessThatHasTheDeclaredPidInItsSandbox) {
  TemporaryTree tree;
  const std::string owner = std::to_string(getuid());
  tree.write("proc/5000/status", "Uid:\t" + owner + "\nNSpid:\t5000\t2\nVmSize:\t 9 kB\n");
  const test::PrivateXServer server({QStringLiteral("-extension"), QStringLiteral("X-Resource")});
  WindowClient client(server.display());
  X11Session session(server.display(), tree.roots());
  client.setText(client.window(), "WM_CLIENT_MACHINE", machineName());
  client.activate(client.window());
  client.declareProcess(2);
  EXPECT_EQ(session.activeProcess(soon()), 5000);
}

TEST(X11FrontmostWithoutAServer, IsUnknown) {
  for (const char* display : {":99999", "nonsense", ":-1", ":"}) {
    X11Session session{std::string(display)};
    EXPECT_EQ(session.activeProcess(soon()), std::nullopt) << display;
    EXPECT_EQ(session.hasEmbeddingTray(soon()), std::nullopt) << display;
  }
}

}  // namespace
}  // namespace tarn
