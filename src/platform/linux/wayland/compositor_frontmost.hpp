// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The frontmost application on Wayland. Wayland itself has no request for it; sway and Hyprland report it on
// their IPC sockets.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "monitor/presentation.hpp"

namespace tarn {

/// Returns a source that asks sway at `socket`. While Tarn's popover has the focus, the source returns the
/// application that had the focus before.
FrontmostApplicationSource swayFrontmostApplication(std::string socket);

/// As swayFrontmostApplication(), for Hyprland.
FrontmostApplicationSource hyprlandFrontmostApplication(std::string socket);

/// The pid of the focused window in a reply to sway's GET_TREE; nullopt when no window is focused.
std::optional<std::int32_t> focusedProcessInTree(std::string_view json);

/// The pid in a reply to Hyprland's "activewindow"; nullopt when there is none.
std::optional<std::int32_t> processOfWindow(std::string_view json);

}  // namespace tarn
