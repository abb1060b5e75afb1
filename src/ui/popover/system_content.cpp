// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/system_content.hpp"

#include <QStringList>
#include <cmath>

#include "format/formatting.hpp"
#include "ui/widgets/display_text.hpp"

namespace tarn {

namespace {

constexpr QStringView separator = u" · ";

ExtrasRow storageRow(const StorageInfo& storage) {
  const QString available =
      QString::fromStdString(ByteFormatting::string(storage.available, platformByteCountFormatter()));
  const QString total =
      QString::fromStdString(ByteFormatting::string(storage.total, platformByteCountFormatter()));
  return {.icon = QStringLiteral("internaldrive"),
          .label = QStringLiteral("Storage"),
          .value = available + QStringLiteral(" free"),
          .secondary =
              QStringList{QStringLiteral("of ") + total, displayText(storage.volumeName)}.join(separator)};
}

ExtrasRow batteryRow(const BatteryInfo& battery) {
  const QString charging = battery.isCharging ? QStringLiteral(" charging") : QString();
  return {.icon = batteryIcon(battery),
          .label = QStringLiteral("Battery"),
          .value = QString::number(battery.percent) + QLatin1Char('%') + charging,
          .secondary = batterySecondary(battery)};
}

ExtrasRow temperatureRow(const std::optional<double>& celsius, ThermalState thermalState) {
  ExtrasRow row{.icon = QStringLiteral("thermometer.medium"),
                .label = QStringLiteral("Temperature"),
                .value = temperatureValue(celsius, thermalState)};
  // Only what was measured says so: a phrase in its place is the system's own word.
  if (celsius) row.secondary = QStringLiteral("sensor average, approximate");
  return row;
}

}  // namespace

std::optional<QString> batterySecondary(const BatteryInfo& battery) {
  QStringList parts;
  if (battery.cycleCount) parts += QString::number(*battery.cycleCount) + QStringLiteral(" cycles");
  if (battery.healthPercent) parts += QString::number(*battery.healthPercent) + QStringLiteral("% health");
  if (parts.isEmpty()) return std::nullopt;
  return parts.join(separator);
}

QString batteryIcon(const BatteryInfo& battery) {
  if (battery.isCharging) return QStringLiteral("battery.100.bolt");
  // Half-way between two quarters the upper one is the nearer.
  if (battery.percent >= 88) return QStringLiteral("battery.100");
  if (battery.percent >= 63) return QStringLiteral("battery.75");
  if (battery.percent >= 38) return QStringLiteral("battery.50");
  if (battery.percent >= 13) return QStringLiteral("battery.25");
  return QStringLiteral("battery.0");
}

QString temperatureValue(const std::optional<double>& celsius, ThermalState thermalState) {
  if (!celsius || !std::isfinite(*celsius)) return QString::fromStdString(thermalPhrase(thermalState));
  return QString::number(std::llround(*celsius)) + QStringLiteral(" °C");
}

std::vector<ExtrasRow> systemRows(const SystemExtras& extras, ThermalState thermalState) {
  std::vector<ExtrasRow> rows;
  if (extras.storage) rows.push_back(storageRow(*extras.storage));
  if (extras.battery) rows.push_back(batteryRow(*extras.battery));
  rows.push_back(temperatureRow(extras.temperatureCelsius, thermalState));
  rows.push_back({.icon = QStringLiteral("clock"),
                  .label = QStringLiteral("Uptime"),
                  .value = QString::fromStdString(UptimeFormatting::string(extras.uptime))});
  return rows;
}

}  // namespace tarn
