// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <utility>

#include "platform/linux/desktop/compositor_placement.hpp"
#include "platform/linux/desktop/compositor_sockets.hpp"
#include "ui/popover_window.hpp"

namespace tarn {

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

/// Whether a compositor runs, by the selection that each one owns while it does.
bool hasCompositor(xcb_connection_t* connection) {
  const QByteArray selection("_NET_WM_CM_S0");
  const auto atomCookie =
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(selection.size()), selection.constData());
  const Owned<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, atomCookie, nullptr));
  if (!atom) return false;
  const auto ownerCookie = xcb_get_selection_owner(connection, atom->atom);
  const Owned<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, ownerCookie, nullptr));
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
