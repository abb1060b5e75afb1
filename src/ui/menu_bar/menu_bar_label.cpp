// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/menu_bar/menu_bar_label.hpp"

#include <algorithm>

#include "format/formatting.hpp"
#include "ui/popover/popover_content.hpp"

namespace tarn {

namespace {

/// Whether a figure of the tooltip is as good as another one: within 5 percent, or 20 MB.
bool isHardlyAnother(std::uint64_t told, std::uint64_t now) {
  constexpr std::uint64_t little = std::uint64_t{20} << 20U;
  const std::uint64_t difference = std::max(told, now) - std::min(told, now);
  return difference <= std::max(little, told / 20);
}

bool areHardlyOthers(const SystemMemory& told, const SystemMemory& now) {
  return isHardlyAnother(told.wired, now.wired) && isHardlyAnother(told.compressed, now.compressed) &&
         isHardlyAnother(told.cachedFiles, now.cachedFiles) && isHardlyAnother(told.swapUsed, now.swapUsed);
}

}  // namespace

MenuBarLabel menuBarLabel(const StatusPresentation& status, const std::optional<MemorySnapshot>& snapshot,
                          bool showFrontmostFootprint, std::optional<std::uint64_t> frontmostFootprint) {
  const StatusAppearance appearance = status.appearance();
  MenuBarLabel label{.symbolName = QString::fromStdString(appearance.symbolName),
                     .tint = appearance.tint,
                     .accessibilityText = QString::fromStdString(appearance.accessibilityText),
                     .hover = {.verdict = QString::fromStdString(appearance.sentence)}};
  if (snapshot) {
    label.hover.detail = detailString(PopoverTab::memory, snapshot, {}, ThermalState::unknown);
    label.hover.memory = snapshot->system;
  }
  if (showFrontmostFootprint && frontmostFootprint) {
    label.text =
        QString::fromStdString(ByteFormatting::string(*frontmostFootprint, platformByteCountFormatter()));
    label.hover.text = label.text;
  }
  return label;
}

MenuBarHover hoverToTell(const MenuBarHover& told, const MenuBarHover& now, bool popoverIsOpen) {
  if (popoverIsOpen && told.text.has_value() == now.text.has_value()) return told;
  const bool saysTheSame = told.verdict == now.verdict && told.text == now.text && told.memory &&
                           now.memory && areHardlyOthers(*told.memory, *now.memory);
  return saysTheSame ? told : now;
}

}  // namespace tarn
