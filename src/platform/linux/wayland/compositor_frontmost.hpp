// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The frontmost application of Wayland compositors that tell it: they do over sockets of their own.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "monitor/presentation.hpp"

namespace tarn {

/// Asks sway at its socket, a new connection each time.
FrontmostApplicationSource swayFrontmostApplication(std::string socket);

/// Likewise Hyprland.
FrontmostApplicationSource hyprlandFrontmostApplication(std::string socket);

/// The process of the focused window in sway's tree of windows; nothing when none is focused.
std::optional<std::int32_t> focusedProcessInTree(std::string_view json);

/// The process in Hyprland's description of the active window; nothing without one.
std::optional<std::int32_t> processOfWindow(std::string_view json);

}  // namespace tarn
