// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/x11/x11_session.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/x11/private_x_server.hpp"
#include "platform/linux/x11/x11_test_client.hpp"
#include "support/event_loop.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using Milliseconds = std::chrono::milliseconds;

std::string hostName() {
  std::array<char, 256> name{};
  EXPECT_EQ(gethostname(name.data(), name.size() - 1), 0);
  return name.data();
}

X11Session::Clock::time_point soon() {
  return X11Session::Clock::now() + std::chrono::seconds(10);
}

class X11SessionTest : public testing::Test {
 protected:
  std::optional<std::int32_t> pid() { return session_.activeProcess(soon()); }

  test::PrivateXServer server_;
  test::X11TestClient client_{server_.display()};
  X11Session session_{server_.display()};
};

TEST_F(X11SessionTest, PrefersTheResourceExtensionToTheDeclaredPid) {
  client_.declareProcess(1);
  client_.activate(client_.window());
  EXPECT_EQ(pid(), getpid());
}

TEST_F(X11SessionTest, QueriesTheActiveWindowEachTime) {
  EXPECT_EQ(pid(), std::nullopt);
  client_.activate(client_.window());
  EXPECT_EQ(pid(), getpid());
  client_.activate(XCB_WINDOW_NONE);
  EXPECT_EQ(pid(), std::nullopt);
}

TEST_F(X11SessionTest, ReportsNoProcessWhenTheActiveWindowDoesNotExist) {
  client_.activate(client_.window());
  client_.destroyWindow();
  client_.activate(0x12345678);
  EXPECT_EQ(pid(), std::nullopt);
  client_.activate(0xffffffff);
  EXPECT_EQ(pid(), std::nullopt);
}

TEST_F(X11SessionTest, ReportsNoProcessWhenTheActiveWindowPropertyIsMalformed) {
  client_.setText(client_.root(), "_NET_ACTIVE_WINDOW", "malformed");
  EXPECT_EQ(pid(), std::nullopt);
  client_.setText(client_.root(), "_NET_ACTIVE_WINDOW", "");
  EXPECT_EQ(pid(), std::nullopt);
  client_.setNumber(client_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_CARDINAL, client_.window());
  EXPECT_EQ(pid(), std::nullopt);
  client_.activate(client_.window());
  EXPECT_EQ(pid(), getpid());
}

TEST_F(X11SessionTest, FrontmostSourceReturnsThePidWithoutABundlePath) {
  client_.activate(client_.window());
  const auto source = x11FrontmostApplication(std::make_shared<X11Session>(server_.display()));
  const auto application = source();
  ASSERT_TRUE(application.has_value());
  EXPECT_EQ(application->processIdentifier, getpid());
  EXPECT_EQ(application->bundlePath, std::nullopt);
}

TEST_F(X11SessionTest, FrontmostSourceTimesOutWhileTheServerIsPaused) {
  client_.activate(client_.window());
  const auto source = x11FrontmostApplication(std::make_shared<X11Session>(server_.display()));
  ASSERT_TRUE(source().has_value());
  server_.pause();
  const auto start = X11Session::Clock::now();
  EXPECT_FALSE(source().has_value());
  const auto firstQuery = X11Session::Clock::now() - start;
  EXPECT_GE(firstQuery, Milliseconds(50));
  EXPECT_LT(firstQuery, Milliseconds(1000));
  for (int count = 0; count < 1000; ++count) EXPECT_FALSE(source().has_value());
  EXPECT_LT(X11Session::Clock::now() - start, Milliseconds(3000))
      << "a query must not wait while a reply is pending";
  server_.resume();
  EXPECT_TRUE(test::eventually([&] { return source().has_value(); }));
}

TEST_F(X11SessionTest, ReconnectsAfterTheServerWasRestarted) {
  client_.activate(client_.window());
  ASSERT_EQ(pid(), getpid());
  server_.stop();
  EXPECT_EQ(pid(), std::nullopt);
  EXPECT_EQ(pid(), std::nullopt);
  const test::PrivateXServer successor({}, server_.display());
  ASSERT_EQ(successor.display(), server_.display());
  test::X11TestClient client(successor.display());
  client.activate(client.window());
  EXPECT_EQ(pid(), getpid());
}

TEST_F(X11SessionTest, ReportsWhetherAnXembedTrayExists) {
  EXPECT_EQ(session_.hasXembedTray(soon()), false);
  client_.setSelectionOwned("_NET_SYSTEM_TRAY_S0", true);
  EXPECT_EQ(session_.hasXembedTray(soon()), true);
  client_.setSelectionOwned("_NET_SYSTEM_TRAY_S0", false);
  EXPECT_EQ(session_.hasXembedTray(soon()), false);
  server_.pause();
  EXPECT_EQ(session_.hasXembedTray(X11Session::Clock::now() + Milliseconds(20)), std::nullopt);
  server_.resume();
}

TEST(X11SessionWithoutResourceExtension, UsesTheDeclaredPidOfAWindowFromThisMachine) {
  const test::PrivateXServer server({QStringLiteral("-extension"), QStringLiteral("X-Resource")});
  test::X11TestClient client(server.display());
  const auto ownPid = static_cast<std::uint32_t>(getpid());
  X11Session session(server.display());
  client.activate(client.window());
  client.declareProcess(ownPid);
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
  client.setText(client.window(), "WM_CLIENT_MACHINE", "elsewhere.example");
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
  client.setText(client.window(), "WM_CLIENT_MACHINE", hostName());
  EXPECT_EQ(session.activeProcess(soon()), getpid());
  client.declareProcess(0);
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
  client.declareProcess(0xffffffff);
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
  client.setText(client.window(), "_NET_WM_PID", "4242");
  EXPECT_EQ(session.activeProcess(soon()), std::nullopt);
}

TEST(X11SessionWithoutResourceExtension, ResolvesADeclaredPidOfAPidNamespace) {
  TemporaryTree tree;
  const std::string owner = std::to_string(getuid());
  tree.write("proc/5000/status", "Uid:\t" + owner + "\nNSpid:\t5000\t2\nVmSize:\t 9 kB\n");
  const test::PrivateXServer server({QStringLiteral("-extension"), QStringLiteral("X-Resource")});
  test::X11TestClient client(server.display());
  X11Session session(server.display(), tree.roots());
  client.setText(client.window(), "WM_CLIENT_MACHINE", hostName());
  client.activate(client.window());
  client.declareProcess(2);
  EXPECT_EQ(session.activeProcess(soon()), 5000);
}

TEST(X11SessionWithoutServer, ReturnsNullopt) {
  for (const char* display : {":99999", "malformed", ":-1", ":"}) {
    X11Session session{std::string(display)};
    EXPECT_EQ(session.activeProcess(soon()), std::nullopt) << display;
    EXPECT_EQ(session.hasXembedTray(soon()), std::nullopt) << display;
  }
}

}  // namespace
}  // namespace tarn
