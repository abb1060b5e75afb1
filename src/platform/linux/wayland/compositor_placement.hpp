// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Placing this process's window on Wayland. Wayland clients cannot place their windows; sway and Hyprland do
// it on request.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ui/popover/popover_placement.hpp"

namespace tarn {

/// Placement by sway at `socket`. sway does not report the pointer's position: locate() has sway center the
/// window on the pointer and reads the window's position. Main thread; each request blocks for 50 ms at most.
std::unique_ptr<CompositorPlacement> swayPlacement(std::string socket);

/// Placement by Hyprland, which reports the pointer's position. Thread and time as above.
std::unique_ptr<CompositorPlacement> hyprlandPlacement(std::string socket);

/// Parses a reply to sway's GET_TREE after sway has centered the floating window of `pid` on the pointer.
/// nullopt when there is no such window.
std::optional<CompositorPlace> placeInSwayTree(std::string_view json, std::int32_t pid);

/// Parses the replies to Hyprland's "cursorpos" and "monitors". nullopt when the pointer is on no monitor.
std::optional<CompositorPlace> placeOnHyprland(std::string_view pointer, std::string_view monitors);

}  // namespace tarn
