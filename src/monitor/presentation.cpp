// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/presentation.hpp"

#include <algorithm>

namespace tarn {

namespace {

// Lower bounds, inclusive, of the load for each sentence.
constexpr double lightWork = 0.15;
constexpr double hardWork = 0.5;
constexpr double flatOut = 0.85;

}  // namespace

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
  // Any swap in use is a warning sign, even while the kernel reports no pressure.
  if (swapUsed > 0) {
    return {"circle.lefthalf.filled", Tint::orange, "Memory normal, using swap",
            "Your Mac is coping, but has started using the disk as overflow."};
  }
  return {"circle", Tint::green, "Memory normal", "Your Mac has memory to spare."};
}

std::optional<double> CPUPresentation::load() const {
  if (coreCount < 1) return std::nullopt;
  return totalPercent / (coreCount * 100.0);
}

std::string CPUPresentation::sentence() const {
  // NaN compares false with every bound, so it reads as idle, like a negative load.
  const double fraction = load().value_or(0);
  if (fraction >= flatOut) return "Your Mac's processor is running flat out.";
  if (fraction >= hardWork) return "Your Mac's processor is working hard.";
  if (fraction >= lightWork) return "Your Mac's processor is doing light work.";
  return "Your Mac's processor is mostly idle.";
}

Tint CPUPresentation::tint() const {
  return load().value_or(0) >= flatOut ? Tint::orange : Tint::secondary;
}

const AppGroup* groupOf(const FrontmostApplication& application, const MemorySnapshot& snapshot) {
  const auto& groups = snapshot.groups;
  if (application.bundlePath) {
    const auto byPath = std::find_if(groups.begin(), groups.end(), [&](const AppGroup& group) {
      return group.bundlePath == application.bundlePath;
    });
    if (byPath != groups.end()) return &*byPath;
  }
  const auto containsProcess = [&](const AppGroup& group) {
    return std::any_of(group.processes.begin(), group.processes.end(), [&](const ProcessSample& process) {
      return process.pid == application.processIdentifier;
    });
  };
  const auto byProcess = std::find_if(groups.begin(), groups.end(), containsProcess);
  return byProcess == groups.end() ? nullptr : &*byProcess;
}

}  // namespace tarn
