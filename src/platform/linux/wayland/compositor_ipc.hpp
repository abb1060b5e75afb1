// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The IPC sockets of sway (man 7 sway-ipc) and of Hyprland (wiki.hyprland.org/IPC). Each request uses a new
// connection and may block the calling thread for compositorTimeout in total.

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

constexpr std::chrono::milliseconds compositorTimeout{50};

/// Message types of sway-ipc.
enum class SwayMessage : std::uint32_t { runCommand = 0, getTree = 4 };

/// Sends a message to sway and returns the payload of its reply, which is JSON; nullopt when that does not
/// arrive in time or is malformed.
std::optional<std::string> requestSway(const std::string& socket, SwayMessage type,
                                       std::string_view payload = {});

/// Sends a request to Hyprland in the form "[flags/]command arguments" and returns its reply. With the flag
/// "j" the reply is JSON.
std::optional<std::string> requestHyprland(const std::string& socket, std::string_view request);

/// The path of sway's socket (SWAYSOCK); empty where sway does not run.
std::string swaySocket();

/// The path of Hyprland's socket (HYPRLAND_INSTANCE_SIGNATURE); empty where Hyprland does not run.
std::string hyprlandSocket();

}  // namespace tarn
