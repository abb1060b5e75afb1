// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/wayland/compositor_ipc.hpp"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <QString>
#include <QtGlobal>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {
namespace {

constexpr std::size_t maxReplySize = std::size_t{4} << 20;  // bytes

/// A Unix stream socket for one request and its reply. Every wait ends at the deadline. After a failure all
/// further calls fail.
class RequestSocket {
 public:
  explicit RequestSocket(const std::string& path)
      : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
      socket_ = {};
      return;
    }
    path.copy(static_cast<char*>(address.sun_path), path.size());
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    // A Unix socket connects immediately; it fails with EAGAIN when the server's backlog is full (man 2
    // connect).
    if (!socket_.valid() || ::connect(socket_.number(), generic, sizeof address) != 0) socket_ = {};
  }

  bool send(std::string_view bytes) {
    while (!bytes.empty()) {
      if (!waitFor(POLLOUT)) return false;
      const ssize_t count = ::send(socket_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (count < 0 && errno != EINTR && errno != EAGAIN) return false;
      bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return socket_.valid();
  }

  /// Exactly `count` bytes; nullopt when fewer arrive.
  std::optional<std::string> receive(std::size_t count) {
    std::string bytes;
    while (bytes.size() < count) {
      if (receiveSome(bytes, count - bytes.size()).value_or(0) == 0) return std::nullopt;
    }
    return bytes;
  }

  /// Everything until the other side closes the connection; nullopt when that is more than `limit` bytes.
  std::optional<std::string> receiveAll(std::size_t limit) {
    std::string bytes;
    while (bytes.size() <= limit) {
      const auto count = receiveSome(bytes, limit + 1 - bytes.size());
      if (!count) return std::nullopt;
      if (*count == 0) return bytes;
    }
    return std::nullopt;
  }

 private:
  using Clock = std::chrono::steady_clock;

  bool waitFor(short events) const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now()).count();
    pollfd waiting{socket_.number(), events, 0};
    return socket_.valid() && left > 0 && ::poll(&waiting, 1, static_cast<int>(left)) > 0;
  }

  /// Appends at most `limit` bytes and returns their number; 0 at the end of the stream, nullopt on failure.
  std::optional<std::size_t> receiveSome(std::string& bytes, std::size_t limit) {
    std::array<char, 16384> buffer{};
    while (waitFor(POLLIN)) {
      const ssize_t count = ::recv(socket_.number(), buffer.data(), std::min(limit, buffer.size()), 0);
      if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
      if (count < 0) return std::nullopt;
      bytes.append(buffer.data(), static_cast<std::size_t>(count));
      return static_cast<std::size_t>(count);
    }
    return std::nullopt;
  }

  FileDescriptor socket_;
  Clock::time_point deadline_ = Clock::now() + compositorTimeout;
};

}  // namespace

// Message and reply (man 7 sway-ipc): "i3-ipc", payload length, payload type, payload. Both numbers have 32
// bits in native byte order.
std::optional<std::string> requestSway(const std::string& socket, SwayMessage type,
                                       std::string_view payload) {
  constexpr std::string_view magic = "i3-ipc";
  constexpr std::size_t numbersSize = 2 * sizeof(std::uint32_t);
  RequestSocket connection(socket);
  std::string message(magic);
  const std::uint32_t numbers[] = {static_cast<std::uint32_t>(payload.size()),
                                   static_cast<std::uint32_t>(type)};
  message.append(reinterpret_cast<const char*>(numbers), numbersSize);
  message += payload;
  if (!connection.send(message)) return std::nullopt;
  const auto header = connection.receive(magic.size() + numbersSize);
  std::uint32_t length = 0;
  if (!header || !header->starts_with(magic)) return std::nullopt;
  std::memcpy(&length, header->data() + magic.size(), sizeof length);
  if (length > maxReplySize) return std::nullopt;
  return connection.receive(length);
}

std::optional<std::string> requestHyprland(const std::string& socket, std::string_view request) {
  RequestSocket connection(socket);
  if (!connection.send(request)) return std::nullopt;
  return connection.receiveAll(maxReplySize);
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
