// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn::test {

/// A label of a machine without memory pressure.
inline MenuBarLabel ordinaryLabel() {
  return {QStringLiteral("circle.fill"),
          Tint::green,
          QStringLiteral("Memory normal"),
          std::nullopt,
          {QStringLiteral("There is memory to spare."), QStringLiteral("6 GB of 16 GB used"), std::nullopt}};
}

/// ordinaryLabel() with text beside the circle.
inline MenuBarLabel labelWithText(const QString& text) {
  MenuBarLabel label = ordinaryLabel();
  label.text = text;
  label.toolTip.footprint = text;
  return label;
}

}  // namespace tarn::test
