// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Where a window of this process goes on Wayland, where programs may not place windows: asked of the
// compositors that take orders.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ui/popover/popover_placement.hpp"

namespace tarn {

/// The placing of this process's window by sway. A position is asked for by having sway move the window to
/// the pointer, since it tells no position of that. Main thread; each call waits 50 ms at most.
std::unique_ptr<CompositorPlacement> swayPlacement(std::string socket);

/// Likewise Hyprland, which tells the pointer's position.
std::unique_ptr<CompositorPlacement> hyprlandPlacement(std::string socket);

/// Where a process's floating window is in sway's tree, which has just put its middle where the pointer is,
/// or as near to that as the output's edges allow; nothing while there is no such window.
std::optional<CompositorPlace> placeInSwayTree(std::string_view json, std::int32_t pid);

/// The pointer by Hyprland's answer to "cursorpos", on one of its "monitors"; nothing where these are not
/// told.
std::optional<CompositorPlace> placeOnHyprland(std::string_view pointer, std::string_view monitors);

}  // namespace tarn
