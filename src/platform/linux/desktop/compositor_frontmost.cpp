// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/desktop/compositor_frontmost.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <chrono>
#include <cstring>
#include <limits>
#include <utility>

#include "platform/linux/desktop/bounded_socket.hpp"

namespace tarn {

namespace {

constexpr auto patience = std::chrono::milliseconds(50);
constexpr std::size_t longestAnswer = std::size_t{4} << 20;

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

std::optional<std::string> askSway(const std::string& path) {
  constexpr std::string_view magic = "i3-ipc";
  constexpr std::uint32_t getTree = 4;
  constexpr std::size_t numbers = 2 * sizeof(std::uint32_t);  // length, kind; in the machine's own order
  BoundedSocket socket(path, BoundedSocket::Clock::now() + patience);
  std::string question(magic);
  const std::uint32_t head[] = {0, getTree};
  question.append(reinterpret_cast<const char*>(head), numbers);
  if (!socket.send(question)) return std::nullopt;
  const auto answer = socket.receive(magic.size() + numbers);
  std::uint32_t length = 0;
  if (!answer || !answer->starts_with(magic)) return std::nullopt;
  std::memcpy(&length, answer->data() + magic.size(), sizeof length);
  if (length > longestAnswer) return std::nullopt;
  return socket.receive(length);
}

std::optional<std::string> askHyprland(const std::string& path) {
  BoundedSocket socket(path, BoundedSocket::Clock::now() + patience);
  if (!socket.send("j/activewindow")) return std::nullopt;
  return socket.receiveAll(longestAnswer);
}

std::optional<FrontmostApplication> applicationOf(std::optional<std::int32_t> pid) {
  if (!pid) return std::nullopt;
  return FrontmostApplication{std::nullopt, *pid};
}

}  // namespace

std::optional<std::int32_t> focusedProcessInTree(std::string_view json) {
  return processOf(focusedIn(objectIn(json), 0));
}

std::optional<std::int32_t> processOfWindow(std::string_view json) {
  return processOf(objectIn(json));
}

FrontmostApplicationSource swayFrontmostApplication(std::string socket) {
  return [socket = std::move(socket)] {
    const auto tree = askSway(socket);
    return applicationOf(tree ? focusedProcessInTree(*tree) : std::nullopt);
  };
}

FrontmostApplicationSource hyprlandFrontmostApplication(std::string socket) {
  return [socket = std::move(socket)] {
    const auto window = askHyprland(socket);
    return applicationOf(window ? processOfWindow(*window) : std::nullopt);
  };
}

}  // namespace tarn
