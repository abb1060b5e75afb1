// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the menu bar shows, as plain values, and how its icon is drawn.

#pragma once

#include <QColor>
#include <QImage>
#include <QString>
#include <cstdint>
#include <optional>

#include "format/formatting.hpp"
#include "monitor/presentation.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// The item's tooltip and title.
struct ToolTip {
  QString status;                      ///< one sentence
  QString detail;                      ///< the memory figures; empty before the first snapshot
  std::optional<QString> footprint;    ///< the same as MenuBarLabel::text
  std::optional<SystemMemory> memory;  ///< the figures of `detail`

  bool operator==(const ToolTip&) const = default;
};

/// What the menu bar shows: a tinted circle and, if the user turned it on, a figure beside it.
struct MenuBarLabel {
  QString symbolName;           ///< "circle", "circle.lefthalf.filled" or "circle.fill"
  Tint tint = Tint::green;      ///< green, orange or red
  QString accessibilityText;    ///< the status in words, for assistive technology
  std::optional<QString> text;  ///< the frontmost application's footprint; nullopt: the circle alone
  ToolTip toolTip;

  bool operator==(const MenuBarLabel&) const = default;
};

/// The label for a status. It has a text when `showFrontmostFootprint` is set and `frontmostFootprint`
/// (bytes) is known.
MenuBarLabel menuBarLabel(const StatusPresentation& status, const std::optional<MemorySnapshot>& snapshot,
                          bool showFrontmostFootprint, std::optional<std::uint64_t> frontmostFootprint,
                          const Formatters& formatters);

/// The memory figures in one line: "Wired … · Compressed … · Cached files … · Swap …".
QString memoryDetail(const SystemMemory& memory, const Formatters& formatters);

/// The tooltip to send to a host that shows `sent`: `current` if it differs noticeably, else `sent`. Each
/// change wakes the host, which then reads several properties. While the popover is open, `current` is sent
/// only when its footprint appears or disappears: some hosts show a changed tooltip, which covers the
/// popover.
ToolTip throttledToolTip(const ToolTip& sent, const ToolTip& current, bool popoverIsOpen);

namespace MenuBarIcon {

/// The symbol in one colour on a transparent square of `pixels` × `pixels`, as large as a 13-point semibold
/// symbol in a bar of that height. Hosts do not recolour it. Transparent for an unknown symbol.
QImage image(const QString& symbolName, const QColor& color, int pixels);

/// The shade of a tint. Its contrast with light and with dark bars is at least 3:1.
QColor color(Tint tint);

}  // namespace MenuBarIcon

}  // namespace tarn
