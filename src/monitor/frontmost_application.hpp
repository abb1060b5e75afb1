// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "sampling/snapshot.hpp"

namespace tarn {

/// The application whose window has the keyboard.
struct FrontmostApplication {
  std::optional<std::string> bundlePath;  ///< its application root, where the system knows one
  std::int32_t processIdentifier = 0;     ///< pid as this machine's process table has it
};

/// The group that the application is shown as: the first with its bundle path, else the first that holds its
/// process; null when the snapshot has neither. Lies in `snapshot`.
const AppGroup* groupOf(const FrontmostApplication& application, const MemorySnapshot& snapshot);

/// Asks for the frontmost application; nothing when there is none or the system does not tell. Main thread;
/// answers within 50 ms or gives nothing.
using FrontmostApplicationSource = std::function<std::optional<FrontmostApplication>()>;

}  // namespace tarn
