// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Wayland compositors that answer questions and take orders over sockets of their own.

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// How long a compositor is waited for, all in all, when it is asked something on the main thread.
constexpr std::chrono::milliseconds compositorPatience{50};

/// What sway is asked, by the numbers of its protocol.
enum class SwayQuestion : std::uint32_t { runCommand = 0, getTree = 4 };

/// sway's answer, as JSON; nothing when it does not come in time. A new connection each time.
std::optional<std::string> askSway(const std::string& socket, SwayQuestion question,
                                   std::string_view words = {});

/// Hyprland's answer to a request as its control program makes it.
std::optional<std::string> askHyprland(const std::string& socket, std::string_view request);

/// sway's socket, as the session's environment tells it; blank where sway does not run.
std::string swaySocket();

/// Likewise Hyprland's.
std::string hyprlandSocket();

}  // namespace tarn
