// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>

#include "monitor/tint.hpp"

namespace tarn {

/// The processor state, reduced to what its verdict needs.
struct CPUPresentation {
  double totalPercent = 0;  ///< sum over all groups, percent of one core
  int coreCount = 0;        ///< active cores

  /// Fraction of the whole machine in use: 1.0 is every core fully busy. Nothing without cores.
  std::optional<double> load() const;

  /// The verdict.
  std::string sentence() const;

  /// Orange when the processor is running flat out, secondary otherwise.
  Tint tint() const;

  bool operator==(const CPUPresentation&) const = default;
};

}  // namespace tarn
