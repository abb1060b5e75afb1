// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/window_system.hpp"

#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>

#include <QCursor>
#include <QGuiApplication>
#include <QRectF>
#include <QScreen>
#include <optional>
#include <utility>

#include "platform/linux/wayland/compositor_placement.hpp"
#include "platform/linux/wayland/compositor_sockets.hpp"
#include "platform/linux/x11/xcb_reply.hpp"

namespace tarn {

namespace {

/// Whether a compositor runs, by the selection that each one owns while it does.
bool hasCompositor(xcb_connection_t* connection) {
  const xcb_atom_t selection = atomOf(connection, "_NET_WM_CM_S0");
  const XcbReply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
  return owner && owner->owner != XCB_NONE;
}

/// The outermost window that the pointer is on, in the toolkit's coordinates; nothing where there is none.
std::optional<QRect> windowUnderPointer(xcb_connection_t* connection) {
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  const XcbReply<xcb_query_pointer_reply_t> pointer(
      xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
  if (!pointer || pointer->child == XCB_WINDOW_NONE) return std::nullopt;
  const XcbReply<xcb_get_geometry_reply_t> window(
      xcb_get_geometry_reply(connection, xcb_get_geometry(connection, pointer->child), nullptr));
  const QScreen* const screen = QGuiApplication::screenAt(QCursor::pos());
  if (!window || screen == nullptr) return std::nullopt;
  const double scale = screen->devicePixelRatio();
  const QPointF corner(window->x - pointer->root_x, window->y - pointer->root_y);  // seen from the pointer
  return QRectF(QCursor::pos() + corner / scale, QSizeF(window->width, window->height) / scale).toRect();
}

CompositorPlacement compositorPlacement() {
  if (std::string sway = swaySocket(); !sway.empty()) return swayPlacement(std::move(sway));
  if (std::string hyprland = hyprlandSocket(); !hyprland.empty())
    return hyprlandPlacement(std::move(hyprland));
  return {};
}

}  // namespace

WindowSystem queryWindowSystem() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 != nullptr) {
    return {.clientsPlaceWindows = true,
            .blendsWindows = hasCompositor(x11->connection()),
            .windowUnderPointer = windowUnderPointer(x11->connection())};
  }
  const bool isWayland = QGuiApplication::platformName().startsWith(u"wayland");
  return {.clientsPlaceWindows = !isWayland,
          .blendsWindows = isWayland,
          .compositor = isWayland ? compositorPlacement() : CompositorPlacement()};
}

}  // namespace tarn
