// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/wayland/compositor_placement.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/linux/wayland/fake_compositor.hpp"

namespace tarn {
namespace {

using namespace std::string_literals;

/// A reply to GET_TREE: two outputs side by side with a panel at the top of each; the second output has a
/// floating window of process `pid`.
std::string treeWith(const std::string& windowRect, std::int32_t pid = 77) {
  return R"({"type":"root","nodes":[
    {"type":"output","name":"HEADLESS-1","rect":{"x":0,"y":0,"width":1280,"height":800},"nodes":[
      {"type":"workspace","rect":{"x":0,"y":30,"width":1280,"height":770},"nodes":[],"floating_nodes":[
        {"type":"floating_con","pid":12,"rect":{"x":5,"y":5,"width":100,"height":100}}]}]},
    {"type":"output","name":"HEADLESS-2","rect":{"x":1280,"y":0,"width":1920,"height":1080},"nodes":[
      {"type":"workspace","rect":{"x":1280,"y":30,"width":1920,"height":1050},"nodes":[],"floating_nodes":[
        {"type":"floating_con","pid":)" +
         std::to_string(pid) + R"(,"rect":)" + windowRect + "}]}]}]}";
}

TEST(PlaceInSwayTree, ReturnsTheOutputAndItsAreaWithoutPanels) {
  const auto place = placeInSwayTree(treeWith(R"({"x":2000,"y":0,"width":320,"height":500})"), 77);
  ASSERT_TRUE(place);
  EXPECT_EQ(place->screen.whole, QRect(1280, 0, 1920, 1080));
  EXPECT_EQ(place->screen.available, QRect(1280, 30, 1920, 1050));
}

TEST(PlaceInSwayTree, DerivesThePointerFromTheCenterOfTheWindow) {
  const auto place = placeInSwayTree(treeWith(R"({"x":2000,"y":300,"width":321,"height":501})"), 77);
  ASSERT_TRUE(place);
  EXPECT_EQ(place->pointer, QPoint(2160, 550));
}

TEST(PlaceInSwayTree, ReturnsTheEdgeWhenTheWindowTouchesIt) {
  const auto pointerWith = [](const std::string& rect) {
    return placeInSwayTree(treeWith(rect), 77)->pointer;
  };
  EXPECT_EQ(pointerWith(R"({"x":2000,"y":0,"width":321,"height":500})"), QPoint(2160, 0));
  EXPECT_EQ(pointerWith(R"({"x":2880,"y":0,"width":320,"height":500})"), QPoint(3199, 0));
  EXPECT_EQ(pointerWith(R"({"x":1280,"y":580,"width":320,"height":500})"), QPoint(1280, 1079));
}

TEST(PlaceInSwayTree, IsAbsentWithoutAFloatingWindowOfTheProcess) {
  EXPECT_FALSE(placeInSwayTree(treeWith(R"({"x":2000,"y":0,"width":320,"height":500})", 78), 77));
  for (const auto* json : {"", "[]", "{}", "garbage", R"({"nodes":5})", R"({"nodes":[{"nodes":[7]}]})"}) {
    EXPECT_FALSE(placeInSwayTree(json, 77)) << json;
  }
}

TEST(PlaceInSwayTree, ToleratesOutOfRangeNumbers) {
  const auto place = placeInSwayTree(treeWith(R"({"x":1e300,"y":-1e12,"width":"wide","height":null})"), 77);
  ASSERT_TRUE(place);
  EXPECT_EQ(place->screen.whole, QRect(1280, 0, 1920, 1080));
}

constexpr auto monitors = R"([
  {"name":"A","x":0,"y":0,"width":2560,"height":1440,"scale":2.0,"reserved":[0,30,0,0]},
  {"name":"B","x":1280,"y":0,"width":1920,"height":1080,"scale":1.0,"reserved":[10,0,20,40]}])";

TEST(PlaceOnHyprland, ReturnsTheMonitorUnderThePointerWithoutReservedSpace) {
  const auto first = placeOnHyprland(R"({"x": 1200, "y": 12})", monitors);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->pointer, QPoint(1200, 12));
  EXPECT_EQ(first->screen.whole, QRect(0, 0, 1280, 720)) << "in logical pixels";
  EXPECT_EQ(first->screen.available, QRect(0, 30, 1280, 690));
  const auto second = placeOnHyprland(R"({"x": 1500, "y": 1070})", monitors);
  ASSERT_TRUE(second);
  EXPECT_EQ(second->screen.available, QRect(1290, 0, 1890, 1040));
}

TEST(PlaceOnHyprland, IsAbsentWhenTheRepliesDoNotContainThePlace) {
  EXPECT_FALSE(placeOnHyprland(R"({"x": 9000, "y": 12})", monitors));
  for (const auto* pointer : {"", "{}", "[]", "unknown request", R"({"x":3})"}) {
    EXPECT_FALSE(placeOnHyprland(pointer, monitors)) << pointer;
  }
  for (const auto* json : {"", "{}", "[]", "[7]", R"([{"scale":0}])"}) {
    EXPECT_FALSE(placeOnHyprland(R"({"x": 10, "y": 12})", json)) << json;
  }
}

const std::string criteria = "[pid=" + std::to_string(::getpid()) + "] ";

TEST(SwayPlacement, CentersTheWindowOnThePointerAndReadsItsPosition) {
  std::string command;
  const FakeCompositor sway(
      {[&](int connection) {
         command = readSwayCommand(connection);
         write(connection, swayReply(R"([{"success":true},{"success":true}])"));
       },
       [](int connection) {
         EXPECT_EQ(readBytes(connection, 14), "i3-ipc\0\0\0\0\4\0\0\0"s);
         write(connection, swayReply(treeWith(R"({"x":2000,"y":0,"width":321,"height":500})", ::getpid())));
       }});
  const auto place = swayPlacement(sway.path())->locate();
  ASSERT_TRUE(place);
  EXPECT_EQ(place->pointer, QPoint(2160, 0));
  EXPECT_EQ(command, criteria + "floating enable, border none, move position cursor");
}

TEST(SwayPlacement, IsAbsentWhileSwayDoesNotHaveTheWindow) {
  for (const std::string& reply : {R"([{"success":false,"error":"No matching node."}])"s, "[]"s, "garbage"s,
                                   R"([{"success":true},{"success":false}])"s}) {
    const FakeCompositor sway([&reply](int connection) {
      readSwayCommand(connection);
      write(connection, swayReply(reply));
    });
    EXPECT_FALSE(swayPlacement(sway.path())->locate()) << reply;
  }
  EXPECT_FALSE(swayPlacement("/nowhere")->locate());
}

TEST(SwayPlacement, MovesTheUpperLeftCorner) {
  std::string command;
  {
    const FakeCompositor sway([&command](int connection) {
      command = readSwayCommand(connection);
      write(connection, swayReply(R"([{"success":true}])"));
    });
    swayPlacement(sway.path())->moveTo(QPoint(1540, -12));
  }
  EXPECT_EQ(command, criteria + "move absolute position 1540 px -12 px");
}

TEST(HyprlandPlacement, RequestsThePointerOnceTheWindowExists) {
  const auto replyTo = [](std::size_t requestSize, const std::string& expected, const std::string& reply) {
    return [=](int connection) {
      EXPECT_EQ(readBytes(connection, requestSize), expected);
      write(connection, reply);
    };
  };
  const std::string windows = R"([{"pid":1},{"pid":)" + std::to_string(::getpid()) + "}]";
  const FakeCompositor hyprland({replyTo(9, "j/clients", windows),
                                 replyTo(11, "j/cursorpos", R"({"x": 1200, "y": 12})"),
                                 replyTo(10, "j/monitors", monitors)});
  const auto place = hyprlandPlacement(hyprland.path())->locate();
  ASSERT_TRUE(place);
  EXPECT_EQ(place->pointer, QPoint(1200, 12));

  const FakeCompositor without(replyTo(9, "j/clients", R"([{"pid":1}])"));
  EXPECT_FALSE(hyprlandPlacement(without.path())->locate());
}

TEST(HyprlandPlacement, MovesTheUpperLeftCorner) {
  std::string command;
  const std::string pid = std::to_string(::getpid());
  const std::string expected =
      "[[BATCH]]dispatch setfloating pid:" + pid + ";dispatch movewindowpixel exact 15 -3,pid:" + pid;
  {
    const FakeCompositor hyprland([&](int connection) {
      command = readBytes(connection, expected.size());
      write(connection, "ok");
    });
    hyprlandPlacement(hyprland.path())->moveTo(QPoint(15, -3));
  }
  EXPECT_EQ(command, expected);
}

}  // namespace
}  // namespace tarn
