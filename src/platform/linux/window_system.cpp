// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/window_system.hpp"

#include <QtGui/qguiapplication_platform.h>

#include <QCursor>
#include <QGuiApplication>
#include <utility>

#include "platform/linux/wayland/compositor_placement.hpp"
#include "platform/linux/wayland/compositor_ipc.hpp"
#include "platform/linux/x11/x11_click.hpp"

namespace tarn {

namespace {

bool isWayland() {
  return QGuiApplication::platformName().startsWith(u"wayland");
}

}  // namespace

WindowSystemState queryWindowSystem() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 != nullptr) {
    const X11ClickState state = queryX11ClickState(x11->connection(), screenScales());
    return {.capabilities = {.clientsPlaceWindows = true, .blendsWindows = state.hasCompositor},
            .pointer = state.pointer,
            .windowUnderPointer = state.windowUnderPointer};
  }
  if (isWayland()) return {.capabilities = {.clientsPlaceWindows = false, .blendsWindows = true}};
  return {.pointer = QCursor::pos()};
}

std::unique_ptr<CompositorPlacement> runningCompositorPlacement() {
  if (!isWayland()) return nullptr;
  if (std::string sway = swaySocket(); !sway.empty()) return swayPlacement(std::move(sway));
  if (std::string hyprland = hyprlandSocket(); !hyprland.empty())
    return hyprlandPlacement(std::move(hyprland));
  return nullptr;
}

}  // namespace tarn
