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

QJsonDocument documentOf(std::string_view json) {
  return QJsonDocument::fromJson(QByteArray(json.data(), static_cast<qsizetype>(json.size())));
}

/// A whole number of a compositor's, 0 for what cannot be one.
int wholeNumber(const QJsonValue& value) {
  constexpr double most = 1 << 24;
  const double number = value.toDouble();
  return std::abs(number) <= most ? static_cast<int>(std::lround(number)) : 0;
}

QRect rectOf(const QJsonObject& node) {
  const QJsonObject rect = node.value(QLatin1String("rect")).toObject();
  return {wholeNumber(rect.value(QLatin1String("x"))), wholeNumber(rect.value(QLatin1String("y"))),
          wholeNumber(rect.value(QLatin1String("width"))), wholeNumber(rect.value(QLatin1String("height")))};
}

/// A coordinate of the pointer by the window that was put in the middle of it, unless the output's edge was
/// in the way: then the pointer is nearer to that edge.
int pointerAlong(int first, int last, int outputFirst, int outputLast) {
  if (first == outputFirst) return outputFirst;
  if (last == outputLast) return outputLast;
  return (first + last) / 2;
}

std::optional<QRect> floatingWindowOf(const QJsonObject& workspace, std::int32_t pid) {
  const QJsonArray windows = workspace.value(QLatin1String("floating_nodes")).toArray();
  for (const auto& entry : windows) {
    const QJsonObject window = entry.toObject();
    if (wholeNumber(window.value(QLatin1String("pid"))) == pid) return rectOf(window);
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
    const QPoint pointer(pointerAlong(window->left(), window->right(), whole.left(), whole.right()),
                         pointerAlong(window->top(), window->bottom(), whole.top(), whole.bottom()));
    return CompositorPlace{{whole, rectOf(workspace)}, pointer};
  }
  return std::nullopt;
}

bool hasSucceeded(const std::optional<std::string>& answer) {
  const QJsonArray results = documentOf(answer.value_or("")).array();
  bool succeeded = !results.isEmpty();
  for (const auto& result : results) {
    succeeded = succeeded && result.toObject().value(QLatin1String("success")).toBool();
  }
  return succeeded;
}

/// An order to sway about this process's windows.
bool orderSway(const std::string& socket, const std::string& order) {
  const std::string ours = "[pid=" + std::to_string(::getpid()) + "] ";
  return hasSucceeded(askSway(socket, SwayQuestion::runCommand, ours + order));
}

std::optional<CompositorPlace> locateOnSway(const std::string& socket) {
  if (!orderSway(socket, "floating enable, border none, move position cursor")) return std::nullopt;
  const auto tree = askSway(socket, SwayQuestion::getTree);
  return tree ? placeInSwayTree(*tree, ::getpid()) : std::nullopt;
}

/// Whether Hyprland shows a window of this process.
bool isKnownToHyprland(const std::string& socket) {
  const QJsonArray windows = documentOf(askHyprland(socket, "j/clients").value_or("")).array();
  for (const auto& window : windows) {
    if (wholeNumber(window.toObject().value(QLatin1String("pid"))) == ::getpid()) return true;
  }
  return false;
}

std::optional<CompositorPlace> locateOnHyprland(const std::string& socket) {
  if (!isKnownToHyprland(socket)) return std::nullopt;
  const auto pointer = askHyprland(socket, "j/cursorpos");
  const auto monitors = askHyprland(socket, "j/monitors");
  return pointer && monitors ? placeOnHyprland(*pointer, *monitors) : std::nullopt;
}

/// A monitor's area and what panels leave of it, in the pointer's units.
ScreenArea areaOfMonitor(const QJsonObject& monitor) {
  const double scale = monitor.value(QLatin1String("scale")).toDouble(1);
  const auto logical = [&](const char* size) {
    return static_cast<int>(
        std::lround(wholeNumber(monitor.value(QLatin1String(size))) / (scale > 0.1 ? scale : 1)));
  };
  const QRect whole(wholeNumber(monitor.value(QLatin1String("x"))),
                    wholeNumber(monitor.value(QLatin1String("y"))), logical("width"), logical("height"));
  const QJsonArray reserved = monitor.value(QLatin1String("reserved")).toArray();
  const auto at = [&](int side) { return wholeNumber(reserved.at(side)); };
  return {whole, whole.adjusted(at(0), at(1), -at(2), -at(3))};
}

class SwayPlacement final : public CompositorPlacement {
 public:
  explicit SwayPlacement(std::string socket) : socket_(std::move(socket)) {}

  std::optional<CompositorPlace> locate() override { return locateOnSway(socket_); }

  void moveTo(const QPoint& corner) override {
    orderSway(socket_, "move absolute position " + std::to_string(corner.x()) + " px " +
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
    const std::string ours = "pid:" + std::to_string(::getpid());
    askHyprland(socket_, "[[BATCH]]dispatch setfloating " + ours + ";dispatch movewindowpixel exact " +
                             std::to_string(corner.x()) + " " + std::to_string(corner.y()) + "," + ours);
  }

 private:
  std::string socket_;
};

}  // namespace

std::optional<CompositorPlace> placeInSwayTree(std::string_view json, std::int32_t pid) {
  const QJsonArray outputs = documentOf(json).object().value(QLatin1String("nodes")).toArray();
  for (const auto& output : outputs) {
    if (auto place = placeOnOutput(output.toObject(), pid)) return place;
  }
  return std::nullopt;
}

std::optional<CompositorPlace> placeOnHyprland(std::string_view pointer, std::string_view monitors) {
  const QJsonObject position = documentOf(pointer).object();
  if (!position.contains(QLatin1String("x")) || !position.contains(QLatin1String("y"))) return std::nullopt;
  const QPoint at(wholeNumber(position.value(QLatin1String("x"))),
                  wholeNumber(position.value(QLatin1String("y"))));
  const QJsonArray all = documentOf(monitors).array();
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
