// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tarn {

/// The application whose window has the keyboard.
struct FrontmostApplication {
  std::optional<std::string> bundlePath;  ///< its application root, where the system knows one
  std::int32_t processIdentifier = 0;     ///< pid as this machine's process table has it
};

/// Asks for the frontmost application; nothing when there is none or the system does not tell. Main thread;
/// answers within 50 ms or gives nothing.
using FrontmostApplicationSource = std::function<std::optional<FrontmostApplication>()>;

/// The running system's source; each platform folder defines it.
FrontmostApplicationSource platformFrontmostApplication();

}  // namespace tarn
