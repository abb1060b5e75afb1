// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/presentation.hpp"

namespace tarn {

StatusAppearance StatusPresentation::appearance() const {
  switch (pressure) {
    case MemoryPressure::critical:
      return {"circle.fill", Tint::red, "Memory pressure critical",
              "Your Mac is out of memory. Close something now."};
    case MemoryPressure::warning:
      return {"circle.lefthalf.filled", Tint::orange, "Memory pressure warning",
              "Your Mac is running short on memory. Closing an app below would help."};
    case MemoryPressure::normal:
      break;
  }
  // Any swap at all is a warning sign, even while the kernel reports no pressure.
  if (swapUsed > 0) {
    return {"circle.lefthalf.filled", Tint::orange, "Memory normal, using swap",
            "Your Mac is coping, but has started using the disk as overflow."};
  }
  return {"circle", Tint::green, "Memory normal", "Your Mac has memory to spare."};
}

}  // namespace tarn
