// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>

#include <QGuiApplication>
#include <utility>

#include "platform/linux/desktop/compositor_placement.hpp"
#include "platform/linux/desktop/compositor_sockets.hpp"
#include "platform/linux/desktop/xcb_reply.hpp"
#include "ui/popover_window.hpp"

namespace tarn {

namespace {

/// Whether a compositor runs, by the selection that each one owns while it does.
bool hasCompositor(xcb_connection_t* connection) {
  const xcb_atom_t selection = atomOf(connection, "_NET_WM_CM_S0");
  const XcbReply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
  return owner && owner->owner != XCB_NONE;
}

CompositorPlacement compositorPlacement() {
  if (std::string sway = swaySocket(); !sway.empty()) return swayPlacement(std::move(sway));
  if (std::string hyprland = hyprlandSocket(); !hyprland.empty())
    return hyprlandPlacement(std::move(hyprland));
  return {};
}

}  // namespace

WindowSystem platformWindowSystem() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 != nullptr) return {.clientsPlaceWindows = true, .blendsWindows = hasCompositor(x11->connection())};
  const bool isWayland = QGuiApplication::platformName().startsWith(u"wayland");
  return {.clientsPlaceWindows = !isWayland,
          .blendsWindows = isWayland,
          .compositor = isWayland ? compositorPlacement() : CompositorPlacement()};
}

}  // namespace tarn
