// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/menu_bar_label.hpp"

#include "format/byte_formatting.hpp"
#include "ui/popover_content.hpp"

namespace tarn {

MenuBarLabel menuBarLabel(const StatusPresentation& status, const std::optional<MemorySnapshot>& snapshot,
                          bool showFrontmostFootprint, std::optional<std::uint64_t> frontmostFootprint) {
  const StatusAppearance appearance = status.appearance();
  MenuBarLabel label{.symbolName = QString::fromStdString(appearance.symbolName),
                     .tint = appearance.tint,
                     .accessibilityText = QString::fromStdString(appearance.accessibilityText),
                     .hover = {.verdict = QString::fromStdString(appearance.sentence)}};
  if (snapshot) label.hover.detail = detailString(PopoverTab::memory, snapshot, {}, ThermalState::unknown);
  if (showFrontmostFootprint && frontmostFootprint) {
    label.text = QString::fromStdString(ByteFormatting::string(*frontmostFootprint));
    label.hover.text = label.text;
  }
  return label;
}

}  // namespace tarn
