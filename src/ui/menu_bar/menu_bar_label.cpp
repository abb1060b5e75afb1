// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/menu_bar/menu_bar_label.hpp"

#include <QPainter>
#include <algorithm>

#include "ui/symbols/symbols.hpp"

namespace tarn {

namespace {

QString byteText(std::uint64_t byteCount, const Formatters& formatters) {
  return QString::fromStdString(ByteFormatting::string(byteCount, formatters.bytes));
}

/// Whether two figures differ by at most 5 percent of the first figure, or by at most 20 MB.
bool isSimilar(std::uint64_t sent, std::uint64_t current) {
  constexpr std::uint64_t tolerance = std::uint64_t{20} << 20U;
  const std::uint64_t difference = std::max(sent, current) - std::min(sent, current);
  return difference <= std::max(tolerance, sent / 20);
}

bool isSimilar(const SystemMemory& sent, const SystemMemory& current) {
  return isSimilar(sent.wired, current.wired) && isSimilar(sent.compressed, current.compressed) &&
         isSimilar(sent.cachedFiles, current.cachedFiles) && isSimilar(sent.swapUsed, current.swapUsed);
}

}  // namespace

MenuBarLabel menuBarLabel(const StatusPresentation& status, const std::optional<MemorySnapshot>& snapshot,
                          bool showFrontmostFootprint, std::optional<std::uint64_t> frontmostFootprint,
                          const Formatters& formatters) {
  const StatusAppearance appearance = status.appearance();
  MenuBarLabel label{.symbolName = QString::fromStdString(appearance.symbolName),
                     .tint = appearance.tint,
                     .accessibilityText = QString::fromStdString(appearance.accessibilityText),
                     .toolTip = {.status = QString::fromStdString(appearance.sentence)}};
  if (snapshot) {
    label.toolTip.detail = memoryDetail(snapshot->system, formatters);
    label.toolTip.memory = snapshot->system;
  }
  if (showFrontmostFootprint && frontmostFootprint) {
    label.text = byteText(*frontmostFootprint, formatters);
    label.toolTip.footprint = label.text;
  }
  return label;
}

QString memoryDetail(const SystemMemory& memory, const Formatters& formatters) {
  return QStringLiteral("Wired %1 · Compressed %2 · Cached files %3 · Swap %4")
      .arg(byteText(memory.wired, formatters), byteText(memory.compressed, formatters),
           byteText(memory.cachedFiles, formatters), byteText(memory.swapUsed, formatters));
}

ToolTip throttledToolTip(const ToolTip& sent, const ToolTip& current, bool popoverIsOpen) {
  if (popoverIsOpen && sent.footprint.has_value() == current.footprint.has_value()) return sent;
  const bool isUnchanged = sent.status == current.status && sent.footprint == current.footprint &&
                           sent.memory && current.memory && isSimilar(*sent.memory, *current.memory);
  return isUnchanged ? sent : current;
}

QImage MenuBarIcon::image(const QString& symbolName, const QColor& color, int pixels) {
  // With other image formats Qt's rasteriser starts threads to fill paths.
  QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  drawSymbol(painter, symbolName, QRectF(0, 0, pixels, pixels), color, SymbolWeight::semibold);
  return image;
}

QColor MenuBarIcon::color(Tint tint) {
  switch (tint) {
    case Tint::green:
      return {0x24, 0x9a, 0x63};
    case Tint::orange:
      return {0xe6, 0x61, 0x00};
    case Tint::red:
      return {0xe0, 0x1b, 0x24};
    case Tint::secondary:
      break;
  }
  return {0x7a, 0x7a, 0x80};
}

}  // namespace tarn
