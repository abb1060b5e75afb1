// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The parts of AppKit that Tarn uses (status item, workspace), with types of the standard library. Main
// thread.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::macos {

/// NSColor's system colours for the memory status.
enum class StatusColor { green, orange, red };

/// What the status item shows.
struct StatusItemContent {
  std::string symbolName;  ///< SF Symbols name; an unknown name leaves the item without an image
  StatusColor color = StatusColor::green;
  std::string accessibilityLabel;    ///< of the image; VoiceOver reads it before the title
  std::optional<std::string> title;  ///< three points beside the image
  std::string toolTip;
};

/// A point on the screen, in points from the top left corner of the first screen; y grows downwards.
struct ScreenPoint {
  double x = 0;
  double y = 0;
};

/// An item in the menu bar. Its destructor removes it.
class StatusItem {
 public:
  virtual ~StatusItem() = default;
  virtual void show(const StatusItemContent& content) = 0;
};

/// Adds an item to the menu bar. `clicked` receives the middle of the item's lower edge; it must not destroy
/// the item.
std::unique_ptr<StatusItem> makeStatusItem(std::function<void(ScreenPoint)> clicked);

/// An application, as NSRunningApplication describes it.
struct RunningApplication {
  std::optional<std::string> bundlePath;
  std::int32_t processIdentifier = 0;
};

/// The application that has the keyboard focus; nullopt when there is none.
std::optional<RunningApplication> frontmostApplication();

/// An image in premultiplied 8-bit RGBA, row by row from the top, without padding.
struct Pixels {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> rgba;
};

/// NSWorkspace's icon for a file, 32 x 32 points at `scale` pixels per point. `scale` is at least 1. Empty
/// when drawing fails.
Pixels fileIcon(const std::string& path, int scale);

/// -[NSApplication terminate:]. Qt cancels this request and ends the program from its event loop.
void terminate();

/// Calls `reopened` for each kAEReopenApplication event (the user opens the application while it runs), until
/// the returned object is destroyed. Replaces the handler that Qt installs when its event loop starts, so
/// call this function after that. Only one such object may exist at a time.
std::shared_ptr<void> watchReopening(std::function<void()> reopened);

}  // namespace tarn::macos
