// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/display_check.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <algorithm>

namespace tarn {

namespace {

bool reachesX11() {
  if (qgetenv("DISPLAY").isEmpty()) return false;
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool reached = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return reached;
}

QByteArray waylandSocketPath() {
  QByteArray display = qgetenv("WAYLAND_DISPLAY");
  if (display.isEmpty() || display.startsWith('/')) return display;
  return qgetenv("XDG_RUNTIME_DIR") + '/' + display;
}

bool reachesWayland() {
  const QByteArray path = waylandSocketPath();
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.isEmpty() || path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return false;
  std::copy(path.begin(), path.end(), std::begin(address.sun_path));
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket < 0) return false;
  const bool reached = connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(socket);
  return reached;
}

}  // namespace

std::optional<QString> findDisplayProblem() {
  // The user selected another Qt platform plugin; Qt itself reports whether it works.
  const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
  if (!chosen.isEmpty() && !chosen.startsWith("xcb") && !chosen.startsWith("wayland")) return std::nullopt;
  const bool acceptsX11 = chosen.isEmpty() || chosen.startsWith("xcb");
  const bool acceptsWayland = chosen.isEmpty() || chosen.startsWith("wayland");
  if ((acceptsX11 && reachesX11()) || (acceptsWayland && reachesWayland())) return std::nullopt;
  const QByteArray display = qgetenv("DISPLAY");
  const QByteArray wayland = qgetenv("WAYLAND_DISPLAY");
  if (display.isEmpty() && wayland.isEmpty()) {
    return QStringLiteral("there is no display here (neither DISPLAY nor WAYLAND_DISPLAY is set)");
  }
  return QStringLiteral("the display %1 cannot be reached")
      .arg(QString::fromLocal8Bit(display.isEmpty() ? wayland : display));
}

}  // namespace tarn
