// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/wayland/compositor_frontmost.hpp"

#include <unistd.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <limits>
#include <utility>

#include "platform/linux/wayland/compositor_ipc.hpp"

namespace tarn {

namespace {

QJsonObject parseObject(std::string_view json) {
  const QByteArray bytes(json.data(), static_cast<qsizetype>(json.size()));
  return QJsonDocument::fromJson(bytes).object();
}

std::optional<std::int32_t> processOf(const QJsonObject& window) {
  constexpr double maxPid = std::numeric_limits<std::int32_t>::max();
  const double pid = window.value(QLatin1String("pid")).toDouble();
  if (!(pid >= 1 && pid <= maxPid)) return std::nullopt;
  return static_cast<std::int32_t>(pid);
}

/// The focused node of a tree; empty if none is. Nodes of sway (man 7 sway-ipc, GET_TREE) have "focused",
/// "pid" (windows only), and children in "nodes" and "floating_nodes".
QJsonObject findFocused(const QJsonObject& node, int depth) {
  constexpr int maxDepth = 64;
  if (depth > maxDepth) return {};
  if (node.value(QLatin1String("focused")).toBool()) return node;
  for (const QLatin1String children : {QLatin1String("nodes"), QLatin1String("floating_nodes")}) {
    const QJsonArray childNodes = node.value(children).toArray();
    for (const auto& child : childNodes) {
      QJsonObject focused = findFocused(child.toObject(), depth + 1);
      if (!focused.isEmpty()) return focused;
    }
  }
  return {};
}

std::optional<FrontmostApplication> applicationOf(std::optional<std::int32_t> pid) {
  if (!pid) return std::nullopt;
  return FrontmostApplication{std::nullopt, *pid};
}

/// Returns what `source` returns; while the popover has the focus, the application that had the focus before.
FrontmostApplicationSource excludeOwnProcess(FrontmostApplicationSource source) {
  return [source = std::move(source), last = std::optional<FrontmostApplication>()]() mutable {
    auto application = source();
    if (!application || application->processIdentifier != ::getpid()) last = std::move(application);
    return last;
  };
}

}  // namespace

std::optional<std::int32_t> focusedProcessInTree(std::string_view json) {
  return processOf(findFocused(parseObject(json), 0));
}

std::optional<std::int32_t> processOfWindow(std::string_view json) {
  return processOf(parseObject(json));
}

FrontmostApplicationSource swayFrontmostApplication(std::string socket) {
  return excludeOwnProcess([socket = std::move(socket)] {
    const auto tree = requestSway(socket, SwayMessage::getTree);
    return applicationOf(tree ? focusedProcessInTree(*tree) : std::nullopt);
  });
}

FrontmostApplicationSource hyprlandFrontmostApplication(std::string socket) {
  return excludeOwnProcess([socket = std::move(socket)] {
    const auto window = requestHyprland(socket, "j/activewindow");
    return applicationOf(window ? processOfWindow(*window) : std::nullopt);
  });
}

}  // namespace tarn
