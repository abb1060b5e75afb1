// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the popover shows, as plain values computed from the view model's state. Widgets only lay them out.

#pragma once

#include <QIcon>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "extras/extras_reader.hpp"
#include "extras/thermal.hpp"
#include "format/formatting.hpp"
#include "monitor/presentation.hpp"
#include "sampling/snapshot.hpp"

namespace tarn {

/// Loads a file's icon from the system. Returns a null icon if there is none. Main thread.
using FileIconLoader = std::function<QIcon(const std::string& path)>;

/// The popover's tabs, in the order in which they are shown.
enum class PopoverTab { memory, cpu, system };

/// A glyph and the sentence beside it.
struct HeaderLine {
  QString symbol;
  Tint tint = Tint::secondary;
  QString text;

  bool operator==(const HeaderLine&) const = default;
};

/// One process of an expanded row.
struct ProcessLine {
  std::int32_t pid = 0;
  QString name;
  QString pidText;  ///< "· PID " and the number
  QString value;

  bool operator==(const ProcessLine&) const = default;
};

/// One row of the application list.
struct RowContent {
  std::string id;  ///< of the group
  QString name;
  std::optional<std::string> bundlePath;  ///< of the bundle whose icon is shown
  QString symbol;                         ///< shown when there is no bundle
  std::optional<QString> secondary;       ///< the line under the name
  QString value;
  bool canExpand = false;
  bool isExpanded = false;
  std::vector<ProcessLine> processes;  ///< empty unless expanded

  bool operator==(const RowContent&) const = default;
};

/// One row of the System tab.
struct ExtrasRow {
  QString symbol;
  QString label;
  QString value;
  std::optional<QString> secondary;  ///< the line under the label

  bool operator==(const ExtrasRow&) const = default;
};

/// Text from outside (UTF-8, possibly invalid) made safe to show: control characters and characters that
/// change the direction of the text around them become U+FFFD, and the length is limited.
QString displayText(std::string_view utf8);

/// The status line of a tab.
HeaderLine statusLine(PopoverTab tab, const StatusPresentation& status, const CPUPresentation& cpu);

/// The figures under the list; a single space, which keeps the line's height, before the first snapshot.
QString detailString(PopoverTab tab, const std::optional<MemorySnapshot>& snapshot,
                     const CPUPresentation& cpu, ThermalState thermalState, const Formatters& formatters);

/// Explains the figures of the memory or CPU tab.
QString explainer(PopoverTab tab);

/// Says where the System tab's figures come from.
QString systemFootnote();

/// The eight largest groups by the tab's metric. If there are more groups, a last row shows the sum of the
/// others; it cannot be expanded. `expanded` holds the ids of the expanded rows.
std::vector<RowContent> applicationRows(const MemorySnapshot& snapshot, PopoverTab tab,
                                        const std::set<std::string>& expanded, const Formatters& formatters);

/// The rows for storage, battery, temperature and uptime, in this order. Storage and battery are omitted if
/// unknown.
std::vector<ExtrasRow> systemRows(const SystemExtras& extras, ThermalState thermalState,
                                  const Formatters& formatters);

/// Charge cycles and health; an unknown one is omitted. nullopt if both are unknown.
std::optional<QString> batterySecondary(const BatteryInfo& battery);

/// The temperature in whole degrees Celsius. Without a reading, the thermal state in words.
QString temperatureValue(const std::optional<double>& celsius, ThermalState thermalState);

}  // namespace tarn
