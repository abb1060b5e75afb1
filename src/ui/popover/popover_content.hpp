// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the popover says, as plain records computed from published state. Widgets only lay these out.

#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "extras/thermal.hpp"
#include "monitor/presentation.hpp"
#include "sampling/snapshot.hpp"
#include "ui/popover/popover_tab.hpp"

namespace tarn {

/// A glyph and the sentence beside it.
struct HeaderLine {
  QString symbol;
  Tint tint = Tint::secondary;
  QString text;

  bool operator==(const HeaderLine&) const = default;
};

/// One process of an open row.
struct ProcessLine {
  std::int32_t pid = 0;
  QString name;
  QString pidText;  ///< "· PID " and the number
  QString value;

  bool operator==(const ProcessLine&) const = default;
};

/// One row of the application list.
struct RowContent {
  std::string id;  ///< the group's
  QString name;
  std::optional<std::string> bundlePath;  ///< whose icon is shown
  QString symbol;                         ///< shown where there is no bundle
  std::optional<QString> secondary;       ///< the line under the name
  QString value;
  bool canOpen = false;
  bool isExpanded = false;
  std::vector<ProcessLine> processes;  ///< only while expanded

  bool operator==(const RowContent&) const = default;
};

/// The verdict of a tab.
HeaderLine statusLine(PopoverTab tab, const StatusPresentation& status, const CPUPresentation& cpu);

/// The figures under the list; a single space, which keeps the line's height, while there are none.
QString detailString(PopoverTab tab, const std::optional<MemorySnapshot>& snapshot,
                     const CPUPresentation& cpu, ThermalState thermalState);

/// What the tab's figures mean.
QString explainer(PopoverTab tab);

/// Where the System tab's facts come from.
QString systemFootnote();

/// The eight heaviest groups by the tab's metric, then, if there are more, one row that sums up the others
/// and cannot be opened. `expanded` holds the ids of the open rows.
std::vector<RowContent> applicationRows(const MemorySnapshot& snapshot, PopoverTab tab,
                                        const std::set<std::string>& expanded);

}  // namespace tarn
