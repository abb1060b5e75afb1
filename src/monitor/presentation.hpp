// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <string>

#include "monitor/tint.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// What a status shows wherever it is shown.
struct StatusAppearance {
  std::string symbolName;         ///< the circle in the menu bar
  Tint tint = Tint::green;        ///< of the circle and of the verdict's glyph
  std::string accessibilityText;  ///< the circle in words
  std::string sentence;           ///< the popover's verdict
};

/// The memory state, reduced to the two facts that decide how it is shown.
struct StatusPresentation {
  MemoryPressure pressure = MemoryPressure::normal;
  std::uint64_t swapUsed = 0;  ///< bytes; counts only while the pressure is normal

  StatusAppearance appearance() const;

  bool operator==(const StatusPresentation&) const = default;
};

}  // namespace tarn
