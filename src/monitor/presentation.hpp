// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// How the state of memory and processor is shown, and which application is frontmost. Values only.

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "sampling/snapshot.hpp"

namespace tarn {

/// Colors with a meaning. The UI decides the shade of each.
enum class Tint { green, orange, red, secondary };

/// How a memory state is shown in the menu bar and in the popover.
struct StatusAppearance {
  std::string symbolName;         ///< of the circle in the menu bar
  Tint tint = Tint::green;        ///< of the circle and of the popover's status symbol
  std::string accessibilityText;  ///< text alternative of the circle
  std::string sentence;           ///< the popover's status sentence
};

/// The part of the memory state that decides its appearance.
struct StatusPresentation {
  MemoryPressure pressure = MemoryPressure::normal;
  std::uint64_t swapUsed = 0;  ///< bytes; used only while the pressure is normal

  StatusAppearance appearance() const;

  bool operator==(const StatusPresentation&) const = default;
};

/// The part of the processor state that decides its sentence and tint.
struct CPUPresentation {
  double totalPercent = 0;  ///< sum over all groups, percent of one core
  int coreCount = 0;        ///< active cores

  /// Returns the fraction of the machine in use: 1.0 when every core is busy. nullopt without cores.
  std::optional<double> load() const;

  /// Returns the status sentence of the CPU tab.
  std::string sentence() const;

  /// Returns orange when the sentence says "running flat out", else secondary.
  Tint tint() const;

  bool operator==(const CPUPresentation&) const = default;
};

/// The application whose window has the keyboard focus.
struct FrontmostApplication {
  std::optional<std::string> bundlePath;  ///< application root, where the system knows it
  std::int32_t processIdentifier = 0;     ///< pid in the PID namespace of this process
};

/// Returns the group of the application in `snapshot`: the first with its bundle path, else the first that
/// contains its process; null when there is none.
const AppGroup* groupOf(const FrontmostApplication& application, const MemorySnapshot& snapshot);

/// Returns the frontmost application; nullopt when there is none or the system does not report it. Main
/// thread; returns within 50 ms.
using FrontmostApplicationSource = std::function<std::optional<FrontmostApplication>()>;

}  // namespace tarn
