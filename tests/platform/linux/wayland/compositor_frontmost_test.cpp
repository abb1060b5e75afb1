// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/wayland/compositor_frontmost.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>

#include "platform/linux/wayland/fake_compositor.hpp"

namespace tarn {
namespace {

using namespace std::string_literals;

constexpr auto tree = R"({"type":"root","focused":false,"nodes":[{"type":"output","nodes":[
  {"type":"workspace","focused":false,"nodes":[{"type":"con","focused":false,"pid":11},
   {"type":"con","focused":false,"nodes":[{"type":"con","focused":true,"pid":4711,"app_id":"foot"}]}],
   "floating_nodes":[{"type":"floating_con","focused":false,"pid":12}]}]}]})";

TEST(FocusedProcessInTree, IsThePidOfTheFocusedWindow) {
  EXPECT_EQ(focusedProcessInTree(tree), 4711);
  EXPECT_EQ(focusedProcessInTree(R"({"nodes":[],"floating_nodes":[{"focused":true,"pid":12}]})"), 12);
}

TEST(FocusedProcessInTree, IsAbsentWithoutAFocusedWindow) {
  for (const auto* json : {"", "{}", "[]", "garbage", R"({"focused":true})", R"({"focused":true,"pid":0})",
                           R"({"focused":true,"pid":-4})", R"({"focused":true,"pid":1e30})",
                           R"({"focused":true,"pid":"12"})", R"({"nodes":[{"pid":12}]})", R"({"nodes":5})"}) {
    EXPECT_EQ(focusedProcessInTree(json), std::nullopt) << json;
  }
  std::string deep;
  for (int i = 0; i < 500; ++i) deep += R"({"nodes":[)";
  EXPECT_EQ(focusedProcessInTree(deep), std::nullopt);
}

TEST(ProcessOfWindow, IsThePidOfHyprlandsActiveWindow) {
  EXPECT_EQ(processOfWindow(R"({"address":"0x1","pid":4711,"class":"foot"})"), 4711);
  EXPECT_EQ(processOfWindow("{}"), std::nullopt);
  EXPECT_EQ(processOfWindow("Invalid"), std::nullopt);
}

TEST(SwayFrontmost, RequestsTheTreeAndReturnsThePid) {
  const FakeCompositor sway([](int connection) {
    EXPECT_EQ(readBytes(connection, 14), "i3-ipc\0\0\0\0\4\0\0\0"s);
    const std::string reply = swayReply(tree);
    write(connection, reply.substr(0, 9));
    write(connection, reply.substr(9));
  });
  const auto application = swayFrontmostApplication(sway.path())();
  ASSERT_TRUE(application);
  EXPECT_EQ(application->processIdentifier, 4711);
  EXPECT_EQ(application->bundlePath, std::nullopt);
}

TEST(SwayFrontmost, KeepsTheApplicationThatHadTheFocusBeforeThePopover) {
  const auto replyWith = [](const std::string& json) {
    return [json](int connection) {
      readBytes(connection, 14);
      write(connection, swayReply(json));
    };
  };
  const auto focusedOn = [](std::int32_t pid) {
    return R"({"nodes":[],"floating_nodes":[{"focused":true,"pid":)" + std::to_string(pid) + "}]}";
  };
  const FakeCompositor sway({replyWith(focusedOn(::getpid())), replyWith(focusedOn(12)),
                             replyWith(focusedOn(::getpid())), replyWith("{}"),
                             replyWith(focusedOn(::getpid()))});
  const auto frontmost = swayFrontmostApplication(sway.path());
  EXPECT_EQ(frontmost(), std::nullopt) << "no application was focused before";
  for (int i = 0; i < 2; ++i) {
    const auto application = frontmost();
    ASSERT_TRUE(application);
    EXPECT_EQ(application->processIdentifier, 12);
  }
  EXPECT_EQ(frontmost(), std::nullopt);
  EXPECT_EQ(frontmost(), std::nullopt) << "an empty workspace was focused before";
}

TEST(SwayFrontmost, TimesOutAfterFiftyMilliseconds) {
  std::atomic<bool> done = false;
  const FakeCompositor sway([&done](int connection) {
    readBytes(connection, 14);
    done.wait(false);
  });
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(swayFrontmostApplication(sway.path())(), std::nullopt);
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_GE(waited, std::chrono::milliseconds(49));
  EXPECT_LT(waited, std::chrono::milliseconds(500));
  done = true;
  done.notify_one();
}

TEST(SwayFrontmost, IsAbsentWhenTheReplyIsMalformed) {
  for (const std::string& reply :
       {"HTTP/1.1 400 Bad"s, ""s, "i3-ipc"s, "i3-ipc\xff\xff\xff\xff\4\0\0\0"s, swayReply("garbage")}) {
    const FakeCompositor sway([&reply](int connection) {
      readBytes(connection, 14);
      write(connection, reply);
    });
    EXPECT_EQ(swayFrontmostApplication(sway.path())(), std::nullopt) << reply;
  }
}

TEST(HyprlandFrontmost, RequestsTheActiveWindowAndReturnsThePid) {
  const FakeCompositor hyprland([](int connection) {
    EXPECT_EQ(readBytes(connection, 14), "j/activewindow");
    write(connection, R"({"pid": 4711})");
  });
  const auto application = hyprlandFrontmostApplication(hyprland.path())();
  ASSERT_TRUE(application);
  EXPECT_EQ(application->processIdentifier, 4711);
}

TEST(CompositorFrontmost, IsAbsentWithoutACompositor) {
  for (const std::string& path : {"/nowhere"s, std::string(5000, 'a'), ""s}) {
    EXPECT_EQ(swayFrontmostApplication(path)(), std::nullopt);
    EXPECT_EQ(hyprlandFrontmostApplication(path)(), std::nullopt);
  }
}

}  // namespace
}  // namespace tarn
