// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The item in the menu bar, in standard types. Main thread.

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tarn::macos {

/// The standard system colours that a status can have.
enum class StatusColor { green, orange, red };

/// What the item shows.
struct StatusItemContent {
  std::string symbolName;  ///< a system symbol; an unknown one leaves the item without a picture
  StatusColor color = StatusColor::green;
  std::string accessibilityLabel;    ///< of the picture; read before the title
  std::optional<std::string> title;  ///< three points after the picture
  std::string toolTip;
};

/// A point on the screen, in points from the top left corner of the first screen, downwards.
struct ScreenPoint {
  double x = 0;
  double y = 0;
};

/// An item at the end of the menu bar; it leaves the menu bar with the object.
class StatusItem {
 public:
  virtual ~StatusItem() = default;
  virtual void show(const StatusItemContent& content) = 0;
};

/// Puts an item into the menu bar. `clicked` is called with the middle of the item's lower edge, and must not
/// destroy the item.
std::unique_ptr<StatusItem> makeStatusItem(std::function<void(ScreenPoint)> clicked);

}  // namespace tarn::macos
