// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/cpu_presentation.hpp"

namespace tarn {

namespace {

// Lower bounds, each inclusive, of the load that a verdict stands for.
constexpr double lightWork = 0.15;
constexpr double hardWork = 0.5;
constexpr double flatOut = 0.85;

}  // namespace

std::optional<double> CPUPresentation::load() const {
  if (coreCount < 1) return std::nullopt;
  return totalPercent / (coreCount * 100.0);
}

std::string CPUPresentation::sentence() const {
  // What is not a number reaches none of the bounds and reads as idle, like a negative load.
  const double fraction = load().value_or(0);
  if (fraction >= flatOut) return "Your Mac's processor is running flat out.";
  if (fraction >= hardWork) return "Your Mac's processor is working hard.";
  if (fraction >= lightWork) return "Your Mac's processor is doing light work.";
  return "Your Mac's processor is mostly idle.";
}

Tint CPUPresentation::tint() const {
  return load().value_or(0) >= flatOut ? Tint::orange : Tint::secondary;
}

}  // namespace tarn
