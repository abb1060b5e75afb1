// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/wayland/compositor_placement.hpp"

#include <unistd.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QRect>
#include <cmath>
#include <utility>

#include "platform/linux/wayland/compositor_ipc.hpp"

namespace tarn {

namespace {

QJsonDocument parse(std::string_view json) {
  return QJsonDocument::fromJson(QByteArray(json.data(), static_cast<qsizetype>(json.size())));
}

/// A number rounded to an integer; 0 when it is too large for a coordinate or no number.
int toInteger(const QJsonValue& value) {
  constexpr double maxCoordinate = 1 << 24;
  const double number = value.toDouble();
  return std::abs(number) <= maxCoordinate ? static_cast<int>(std::lround(number)) : 0;
}

QRect rectOf(const QJsonObject& node) {
  const QJsonObject rect = node.value(QLatin1String("rect")).toObject();
  return {toInteger(rect.value(QLatin1String("x"))), toInteger(rect.value(QLatin1String("y"))),
          toInteger(rect.value(QLatin1String("width"))), toInteger(rect.value(QLatin1String("height")))};
}

/// One coordinate of the pointer, derived from a window that sway has just centered on it. If the window
/// touches the output's edge, sway could not center it because the pointer is closer to the edge: returns the
/// edge.
int pointerCoordinate(int first, int last, int outputFirst, int outputLast) {
  if (first == outputFirst) return outputFirst;
  if (last == outputLast) return outputLast;
  return (first + last) / 2;
}

std::optional<QRect> floatingWindowOf(const QJsonObject& workspace, std::int32_t pid) {
  const QJsonArray windows = workspace.value(QLatin1String("floating_nodes")).toArray();
  for (const auto& entry : windows) {
    const QJsonObject window = entry.toObject();
    if (toInteger(window.value(QLatin1String("pid"))) == pid) return rectOf(window);
  }
  return std::nullopt;
}

std::optional<CompositorPlace> placeOnOutput(const QJsonObject& output, std::int32_t pid) {
  const QRect whole = rectOf(output);
  const QJsonArray workspaces = output.value(QLatin1String("nodes")).toArray();
  for (const auto& entry : workspaces) {
    const QJsonObject workspace = entry.toObject();
    const auto window = floatingWindowOf(workspace, pid);
    if (!window) continue;
    const QPoint pointer(pointerCoordinate(window->left(), window->right(), whole.left(), whole.right()),
                         pointerCoordinate(window->top(), window->bottom(), whole.top(), whole.bottom()));
    return CompositorPlace{{whole, rectOf(workspace)}, pointer};
  }
  return std::nullopt;
}

/// A reply to RUN_COMMAND (man 7 sway-ipc): one object with "success" for each command.
bool hasSucceeded(const std::optional<std::string>& reply) {
  const QJsonArray results = parse(reply.value_or("")).array();
  bool succeeded = !results.isEmpty();
  for (const auto& result : results) {
    succeeded = succeeded && result.toObject().value(QLatin1String("success")).toBool();
  }
  return succeeded;
}

/// Makes sway run `command` for the windows of this process.
bool commandSway(const std::string& socket, const std::string& command) {
  const std::string criteria = "[pid=" + std::to_string(::getpid()) + "] ";
  return hasSucceeded(requestSway(socket, SwayMessage::runCommand, criteria + command));
}

std::optional<CompositorPlace> locateOnSway(const std::string& socket) {
  if (!commandSway(socket, "floating enable, border none, move position cursor")) return std::nullopt;
  const auto tree = requestSway(socket, SwayMessage::getTree);
  return tree ? placeInSwayTree(*tree, ::getpid()) : std::nullopt;
}

/// Whether Hyprland has a window of this process.
bool isKnownToHyprland(const std::string& socket) {
  const QJsonArray windows = parse(requestHyprland(socket, "j/clients").value_or("")).array();
  for (const auto& window : windows) {
    if (toInteger(window.toObject().value(QLatin1String("pid"))) == ::getpid()) return true;
  }
  return false;
}

std::optional<CompositorPlace> locateOnHyprland(const std::string& socket) {
  if (!isKnownToHyprland(socket)) return std::nullopt;
  const auto pointer = requestHyprland(socket, "j/cursorpos");
  const auto monitors = requestHyprland(socket, "j/monitors");
  return pointer && monitors ? placeOnHyprland(*pointer, *monitors) : std::nullopt;
}

/// The area of one element of Hyprland's "monitors". Its "width" and "height" are in physical pixels, all
/// other numbers are in logical pixels like the pointer's position. "reserved" is what panels take: left,
/// top, right, bottom.
ScreenArea areaOfMonitor(const QJsonObject& monitor) {
  const double scale = monitor.value(QLatin1String("scale")).toDouble(1);
  const auto logical = [&](const char* size) {
    return static_cast<int>(
        std::lround(toInteger(monitor.value(QLatin1String(size))) / (scale > 0.1 ? scale : 1)));
  };
  const QRect whole(toInteger(monitor.value(QLatin1String("x"))),
                    toInteger(monitor.value(QLatin1String("y"))), logical("width"), logical("height"));
  const QJsonArray reserved = monitor.value(QLatin1String("reserved")).toArray();
  const auto at = [&](int side) { return toInteger(reserved.at(side)); };
  return {whole, whole.adjusted(at(0), at(1), -at(2), -at(3))};
}

class SwayPlacement final : public CompositorPlacement {
 public:
  explicit SwayPlacement(std::string socket) : socket_(std::move(socket)) {}

  std::optional<CompositorPlace> locate() override { return locateOnSway(socket_); }

  void moveTo(const QPoint& corner) override {
    commandSway(socket_, "move absolute position " + std::to_string(corner.x()) + " px " +
                             std::to_string(corner.y()) + " px");
  }

 private:
  std::string socket_;
};

class HyprlandPlacement final : public CompositorPlacement {
 public:
  explicit HyprlandPlacement(std::string socket) : socket_(std::move(socket)) {}

  std::optional<CompositorPlace> locate() override { return locateOnHyprland(socket_); }

  void moveTo(const QPoint& corner) override {
    const std::string window = "pid:" + std::to_string(::getpid());
    requestHyprland(socket_, "[[BATCH]]dispatch setfloating " + window + ";dispatch movewindowpixel exact " +
                                 std::to_string(corner.x()) + " " + std::to_string(corner.y()) + "," +
                                 window);
  }

 private:
  std::string socket_;
};

}  // namespace

std::optional<CompositorPlace> placeInSwayTree(std::string_view json, std::int32_t pid) {
  const QJsonArray outputs = parse(json).object().value(QLatin1String("nodes")).toArray();
  for (const auto& output : outputs) {
    if (auto place = placeOnOutput(output.toObject(), pid)) return place;
  }
  return std::nullopt;
}

std::optional<CompositorPlace> placeOnHyprland(std::string_view pointer, std::string_view monitors) {
  const QJsonObject position = parse(pointer).object();
  if (!position.contains(QLatin1String("x")) || !position.contains(QLatin1String("y"))) return std::nullopt;
  const QPoint at(toInteger(position.value(QLatin1String("x"))),
                  toInteger(position.value(QLatin1String("y"))));
  const QJsonArray all = parse(monitors).array();
  for (const auto& monitor : all) {
    const ScreenArea area = areaOfMonitor(monitor.toObject());
    if (area.whole.contains(at)) return CompositorPlace{area, at};
  }
  return std::nullopt;
}

std::unique_ptr<CompositorPlacement> swayPlacement(std::string socket) {
  return std::make_unique<SwayPlacement>(std::move(socket));
}

std::unique_ptr<CompositorPlacement> hyprlandPlacement(std::string socket) {
  return std::make_unique<HyprlandPlacement>(std::move(socket));
}

}  // namespace tarn
