// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/wayland/compositor_ipc.hpp"

#include <QString>
#include <QtGlobal>
#include <cstring>

#include "platform/linux/wayland/bounded_socket.hpp"

namespace tarn {

namespace {

constexpr std::size_t longestAnswer = std::size_t{4} << 20;

}  // namespace

std::optional<std::string> askSway(const std::string& socket, SwayQuestion question, std::string_view words) {
  constexpr std::string_view magic = "i3-ipc";
  constexpr std::size_t numbers = 2 * sizeof(std::uint32_t);  // length, kind; in the machine's own order
  BoundedSocket connection(socket, BoundedSocket::Clock::now() + compositorPatience);
  std::string message(magic);
  const std::uint32_t head[] = {static_cast<std::uint32_t>(words.size()),
                                static_cast<std::uint32_t>(question)};
  message.append(reinterpret_cast<const char*>(head), numbers);
  message += words;
  if (!connection.send(message)) return std::nullopt;
  const auto answer = connection.receive(magic.size() + numbers);
  std::uint32_t length = 0;
  if (!answer || !answer->starts_with(magic)) return std::nullopt;
  std::memcpy(&length, answer->data() + magic.size(), sizeof length);
  if (length > longestAnswer) return std::nullopt;
  return connection.receive(length);
}

std::optional<std::string> askHyprland(const std::string& socket, std::string_view request) {
  BoundedSocket connection(socket, BoundedSocket::Clock::now() + compositorPatience);
  if (!connection.send(request)) return std::nullopt;
  return connection.receiveAll(longestAnswer);
}

std::string swaySocket() {
  return qEnvironmentVariable("SWAYSOCK").toStdString();
}

std::string hyprlandSocket() {
  const QString instance = qEnvironmentVariable("HYPRLAND_INSTANCE_SIGNATURE");
  if (instance.isEmpty()) return {};
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  return (runtime + QStringLiteral("/hypr/") + instance + QStringLiteral("/.socket.sock")).toStdString();
}

}  // namespace tarn
