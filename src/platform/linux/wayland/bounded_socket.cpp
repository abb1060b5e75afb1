// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/wayland/bounded_socket.hpp"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace tarn {

BoundedSocket::BoundedSocket(const std::string& path, Clock::time_point deadline)
    : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)), deadline_(deadline) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    socket_ = {};
    return;
  }
  path.copy(static_cast<char*>(address.sun_path), path.size());
  // The address of a local socket is passed as that of any.
  const auto* const any = reinterpret_cast<const sockaddr*>(&address);
  // A local socket connects at once, or not at all for want of room.
  if (!socket_.valid() || ::connect(socket_.number(), any, sizeof address) != 0) socket_ = {};
}

bool BoundedSocket::isReady(short events) const {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now()).count();
  pollfd waiting{socket_.number(), events, 0};
  return socket_.valid() && left > 0 && ::poll(&waiting, 1, static_cast<int>(left)) > 0;
}

bool BoundedSocket::send(std::string_view bytes) {
  while (!bytes.empty()) {
    if (!isReady(POLLOUT)) return false;
    const ssize_t count = ::send(socket_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR && errno != EAGAIN) return false;
    bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  }
  return socket_.valid();
}

std::optional<std::size_t> BoundedSocket::take(std::string& bytes, std::size_t most) {
  constexpr std::size_t atOnce = 16384;
  std::array<char, atOnce> buffer{};
  while (isReady(POLLIN)) {
    const ssize_t count = ::recv(socket_.number(), buffer.data(), std::min(most, buffer.size()), 0);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count < 0) return std::nullopt;
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
    return static_cast<std::size_t>(count);
  }
  return std::nullopt;
}

std::optional<std::string> BoundedSocket::receive(std::size_t count) {
  std::string bytes;
  while (bytes.size() < count) {
    if (take(bytes, count - bytes.size()).value_or(0) == 0) return std::nullopt;
  }
  return bytes;
}

std::optional<std::string> BoundedSocket::receiveAll(std::size_t most) {
  std::string bytes;
  while (bytes.size() <= most) {
    const auto count = take(bytes, most + 1 - bytes.size());
    if (!count) return std::nullopt;
    if (*count == 0) return bytes;
  }
  return std::nullopt;
}

}  // namespace tarn
