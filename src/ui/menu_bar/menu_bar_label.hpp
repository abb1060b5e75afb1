// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <cstdint>
#include <optional>

#include "monitor/presentation.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// What a host tells when the pointer rests on the item, and as its title.
struct MenuBarHover {
  QString verdict;              ///< one sentence
  QString detail;               ///< the memory figures behind it; empty while there are none
  std::optional<QString> text;  ///< the frontmost application's footprint, for hosts that show it only here
  std::optional<SystemMemory> memory;  ///< the figures of `detail`

  bool operator==(const MenuBarHover&) const = default;
};

/// What the menu bar shows: a tinted circle and, when the user asked for it, a figure beside it.
struct MenuBarLabel {
  QString symbolName;           ///< "circle", "circle.lefthalf.filled" or "circle.fill"
  Tint tint = Tint::green;      ///< green, orange or red
  QString accessibilityText;    ///< the status in words, for assistive technology
  std::optional<QString> text;  ///< the frontmost application's footprint; absent: the circle alone
  MenuBarHover hover;

  bool operator==(const MenuBarLabel&) const = default;
};

/// The label for a status: its circle, and the frontmost application's footprint (bytes) when the user asked
/// for it and it is known.
MenuBarLabel menuBarLabel(const StatusPresentation& status, const std::optional<MemorySnapshot>& snapshot,
                          bool showFrontmostFootprint, std::optional<std::uint64_t> frontmostFootprint);

/// What a host that was told `told` is to be told now: that again, while nothing else would be worth its
/// while. Each telling wakes the host, which then asks for more; and over an open popover a tooltip that
/// changes comes up, so there it may wait, but for what the user has just switched on or off.
MenuBarHover hoverToTell(const MenuBarHover& told, const MenuBarHover& now, bool popoverIsOpen);

}  // namespace tarn
