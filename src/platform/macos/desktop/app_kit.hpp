// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What Tarn asks of the workspace and of the application object, in standard types. Main thread.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::macos {

/// The application that has the keyboard.
struct RunningApplication {
  std::optional<std::string> bundlePath;  ///< path of its bundle's location
  std::int32_t processIdentifier = 0;
};

/// Nothing when no application is frontmost.
std::optional<RunningApplication> frontmostApplication();

/// A picture in premultiplied 8-bit RGBA, row by row from the top, without padding.
struct Pixels {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> rgba;
};

/// The icon that the workspace has for a file, 32 x 32 points at `scale` pixels per point, at least 1; empty
/// when it cannot be drawn.
Pixels fileIcon(const std::string& path, int scale);

/// Ends the program as the system does.
void terminate();

/// Calls `reopened` when the program is opened while it runs, until the returned object is gone. One at a
/// time, once the event loop runs: it takes the place of the application's own handling.
std::shared_ptr<void> watchReopening(std::function<void()> reopened);

}  // namespace tarn::macos
