// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the System tab says, as plain records computed from published state.

#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "extras/system_extras.hpp"
#include "extras/thermal.hpp"

namespace tarn {

/// One fact about the machine.
struct ExtrasRow {
  QString icon;  ///< a symbol's name
  QString label;
  QString value;
  std::optional<QString> secondary;  ///< the line under the label

  bool operator==(const ExtrasRow&) const = default;
};

/// Cycles and health, as far as they are known.
std::optional<QString> batterySecondary(const BatteryInfo& battery);

/// The battery's level to the nearest quarter, or that it charges, as a symbol's name.
QString batteryIcon(const BatteryInfo& battery);

/// The temperature in whole degrees Celsius; without a reading, the thermal state in words.
QString temperatureValue(const std::optional<double>& celsius, ThermalState thermalState);

/// Storage, battery, temperature and uptime, in this order; a fact that is not known is left out.
std::vector<ExtrasRow> systemRows(const SystemExtras& extras, ThermalState thermalState);

}  // namespace tarn
