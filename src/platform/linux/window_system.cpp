// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QtGui/qguiapplication_platform.h>

#include <QGuiApplication>
#include <utility>

#include "platform/linux/wayland/compositor_placement.hpp"
#include "platform/linux/wayland/compositor_ipc.hpp"
#include "platform/linux/x11/x11_click.hpp"
#include "ui/popover/popover_window.hpp"

namespace tarn {

namespace {

CompositorPlacement compositorPlacement() {
  if (std::string sway = swaySocket(); !sway.empty()) return swayPlacement(std::move(sway));
  if (std::string hyprland = hyprlandSocket(); !hyprland.empty())
    return hyprlandPlacement(std::move(hyprland));
  return {};
}

}  // namespace

WindowSystem platformWindowSystem() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 != nullptr) {
    const X11ClickState state = queryX11ClickState(x11->connection(), screenScales());
    return {.clientsPlaceWindows = true,
            .blendsWindows = state.hasCompositor,
            .windowUnderPointer = state.windowUnderPointer};
  }
  const bool isWayland = QGuiApplication::platformName().startsWith(u"wayland");
  return {.clientsPlaceWindows = !isWayland,
          .blendsWindows = isWayland,
          .compositor = isWayland ? compositorPlacement() : CompositorPlacement()};
}

}  // namespace tarn
