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

QJsonObject objectIn(std::string_view json) {
  const QByteArray bytes(json.data(), static_cast<qsizetype>(json.size()));
  return QJsonDocument::fromJson(bytes).object();
}

std::optional<std::int32_t> processOf(const QJsonObject& window) {
  constexpr double most = std::numeric_limits<std::int32_t>::max();
  const double pid = window.value(QLatin1String("pid")).toDouble();
  if (!(pid >= 1 && pid <= most)) return std::nullopt;
  return static_cast<std::int32_t>(pid);
}

/// The focused one of a node and those below it; empty without one.
QJsonObject focusedIn(const QJsonObject& node, int depth) {
  constexpr int deepest = 64;
  if (depth > deepest) return {};
  if (node.value(QLatin1String("focused")).toBool()) return node;
  for (const QLatin1String children : {QLatin1String("nodes"), QLatin1String("floating_nodes")}) {
    const QJsonArray below = node.value(children).toArray();
    for (const auto& child : below) {
      QJsonObject found = focusedIn(child.toObject(), depth + 1);
      if (!found.isEmpty()) return found;
    }
  }
  return {};
}

std::optional<FrontmostApplication> applicationOf(std::optional<std::int32_t> pid) {
  if (!pid) return std::nullopt;
  return FrontmostApplication{std::nullopt, *pid};
}

/// The popover takes the focus here: while it has it, the application before it is still the frontmost one.
FrontmostApplicationSource besideOurselves(FrontmostApplicationSource source) {
  return [source = std::move(source), last = std::optional<FrontmostApplication>()]() mutable {
    auto application = source();
    if (!application || application->processIdentifier != ::getpid()) last = std::move(application);
    return last;
  };
}

}  // namespace

std::optional<std::int32_t> focusedProcessInTree(std::string_view json) {
  return processOf(focusedIn(objectIn(json), 0));
}

std::optional<std::int32_t> processOfWindow(std::string_view json) {
  return processOf(objectIn(json));
}

FrontmostApplicationSource swayFrontmostApplication(std::string socket) {
  return besideOurselves([socket = std::move(socket)] {
    const auto tree = askSway(socket, SwayQuestion::getTree);
    return applicationOf(tree ? focusedProcessInTree(*tree) : std::nullopt);
  });
}

FrontmostApplicationSource hyprlandFrontmostApplication(std::string socket) {
  return besideOurselves([socket = std::move(socket)] {
    const auto window = askHyprland(socket, "j/activewindow");
    return applicationOf(window ? processOfWindow(*window) : std::nullopt);
  });
}

}  // namespace tarn
