// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_content.hpp"

#include <QStringList>
#include <algorithm>
#include <cmath>

#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

namespace {

constexpr std::int64_t listedGroups = 8;
constexpr QStringView separator = u" · ";

QString byteText(std::uint64_t byteCount, const Formatters& formatters) {
  return QString::fromStdString(ByteFormatting::string(byteCount, formatters.bytes));
}

QString cpuText(double percent, const Formatters& formatters) {
  return QString::fromStdString(CPUFormatting::string(percent, formatters.percents));
}

/// The figure of a group or of a process for the metric.
template <typename Measured>
QString valueText(const Measured& measured, SortMetric metric, const Formatters& formatters) {
  return metric == SortMetric::cpu ? cpuText(measured.cpuPercent, formatters)
                                   : byteText(measured.footprint, formatters);
}

QString cpuDetail(const CPUPresentation& cpu, ThermalState thermalState, const Formatters& formatters) {
  return QStringLiteral("%1 of %2 cores in use · %3")
      .arg(cpuText(cpu.totalPercent, formatters), QString::number(cpu.coreCount),
           QString::fromStdString(thermalPhrase(thermalState)));
}

ProcessLine processLine(const ProcessSample& process, SortMetric metric, const Formatters& formatters) {
  return {process.pid, displayText(process.name), QStringLiteral("· PID %1").arg(process.pid),
          valueText(process, metric, formatters)};
}

RowContent rowContent(const AppGroup& group, SortMetric metric, const Formatters& formatters) {
  const bool isAggregate = group.id == everythingElseId;
  RowContent row{
      .id = group.id,
      .name = displayText(group.name),
      .bundlePath = group.bundlePath,
      .symbol = isAggregate ? QStringLiteral("ellipsis.circle.fill") : QStringLiteral("gearshape.fill"),
      .value = valueText(group, metric, formatters)};
  if (group.processCount() >= 2) {
    row.secondary = QStringLiteral("%1 background processes").arg(group.processCount());
  }
  return row;
}

ExtrasRow storageRow(const StorageInfo& storage, const Formatters& formatters) {
  const QString available = byteText(storage.available, formatters);
  const QString total = byteText(storage.total, formatters);
  return {.symbol = QStringLiteral("internaldrive"),
          .label = QStringLiteral("Storage"),
          .value = available + QStringLiteral(" free"),
          .secondary =
              QStringList{QStringLiteral("of ") + total, displayText(storage.volumeName)}.join(separator)};
}

/// The symbol for the battery's level, rounded to the nearest quarter, or for a charging battery.
QString batterySymbol(const BatteryInfo& battery) {
  if (battery.isCharging) return QStringLiteral("battery.100.bolt");
  // The bounds are half-way between two quarters (12.5, 37.5, …), rounded up.
  if (battery.percent >= 88) return QStringLiteral("battery.100");
  if (battery.percent >= 63) return QStringLiteral("battery.75");
  if (battery.percent >= 38) return QStringLiteral("battery.50");
  if (battery.percent >= 13) return QStringLiteral("battery.25");
  return QStringLiteral("battery.0");
}

ExtrasRow batteryRow(const BatteryInfo& battery) {
  const QString charging = battery.isCharging ? QStringLiteral(" charging") : QString();
  return {.symbol = batterySymbol(battery),
          .label = QStringLiteral("Battery"),
          .value = QString::number(battery.percent) + QLatin1Char('%') + charging,
          .secondary = batterySecondary(battery)};
}

ExtrasRow temperatureRow(const std::optional<double>& celsius, ThermalState thermalState) {
  ExtrasRow row{.symbol = QStringLiteral("thermometer.medium"),
                .label = QStringLiteral("Temperature"),
                .value = temperatureValue(celsius, thermalState)};
  // Without a reading the value is the thermal state, which the system reports.
  if (celsius) row.secondary = QStringLiteral("sensor average, approximate");
  return row;
}

/// Bytes: more than a row can show. Limits the layout time of a long process name.
constexpr std::size_t longestText = 512;

/// Control characters, line and paragraph separators, and the bidirectional formatting characters of UAX #9.
bool isUnsafe(QChar character) {
  switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
      return true;
    default:
      break;
  }
  const char16_t code = character.unicode();
  const bool isDirectionMark = code == 0x061c || code == 0x200e || code == 0x200f;
  const bool isEmbedding = code >= 0x202a && code <= 0x202e;
  const bool isIsolate = code >= 0x2066 && code <= 0x2069;
  return isDirectionMark || isEmbedding || isIsolate;
}

}  // namespace

QString displayText(std::string_view utf8) {
  const auto length = static_cast<qsizetype>(std::min(utf8.size(), longestText));
  QString text = QString::fromUtf8(utf8.data(), length);
  std::replace_if(text.begin(), text.end(), isUnsafe, QChar(QChar::ReplacementCharacter));
  return text;
}

HeaderLine statusLine(PopoverTab tab, const StatusPresentation& status, const CPUPresentation& cpu) {
  switch (tab) {
    case PopoverTab::memory: {
      const StatusAppearance appearance = status.appearance();
      return {QStringLiteral("memorychip"), appearance.tint, QString::fromStdString(appearance.sentence)};
    }
    case PopoverTab::cpu:
      return {QStringLiteral("cpu"), cpu.tint(), QString::fromStdString(cpu.sentence())};
    case PopoverTab::system:
      break;
  }
  return {QStringLiteral("desktopcomputer"), Tint::secondary, QStringLiteral("A few things worth knowing.")};
}

QString detailString(PopoverTab tab, const std::optional<MemorySnapshot>& snapshot,
                     const CPUPresentation& cpu, ThermalState thermalState, const Formatters& formatters) {
  if (!snapshot || tab == PopoverTab::system) return QStringLiteral(" ");
  return tab == PopoverTab::cpu ? cpuDetail(cpu, thermalState, formatters)
                                : memoryDetail(snapshot->system, formatters);
}

QString explainer(PopoverTab tab) {
  if (tab == PopoverTab::cpu) {
    return QStringLiteral(
        "CPU is shown as a share of one core, like Activity Monitor — a busy app can pass 100%.");
  }
  return QStringLiteral("Cached files are free space macOS is borrowing — it gives them back instantly.");
}

QString systemFootnote() {
  return QStringLiteral(
      "All read locally with no special privileges. Temperature falls back to the system's own reading when "
      "no sensor is available.");
}

std::vector<RowContent> applicationRows(const MemorySnapshot& snapshot, PopoverTab tab,
                                        const std::set<std::string>& expanded, const Formatters& formatters) {
  const SortMetric metric = tab == PopoverTab::cpu ? SortMetric::cpu : SortMetric::memory;
  const TopGroups top = snapshot.topGroups(metric, listedGroups);
  std::vector<RowContent> rows;
  rows.reserve(top.rows.size() + 1);
  for (const AppGroup& group : top.rows) {
    RowContent& row = rows.emplace_back(rowContent(group, metric, formatters));
    row.canExpand = true;
    row.isExpanded = expanded.contains(group.id);
    if (!row.isExpanded) continue;
    for (const ProcessSample& process : group.processes)
      row.processes.push_back(processLine(process, metric, formatters));
  }
  if (top.everythingElse) rows.push_back(rowContent(*top.everythingElse, metric, formatters));
  return rows;
}

std::optional<QString> batterySecondary(const BatteryInfo& battery) {
  QStringList parts;
  if (battery.cycleCount) parts += QString::number(*battery.cycleCount) + QStringLiteral(" cycles");
  if (battery.healthPercent) parts += QString::number(*battery.healthPercent) + QStringLiteral("% health");
  if (parts.isEmpty()) return std::nullopt;
  return parts.join(separator);
}

QString temperatureValue(const std::optional<double>& celsius, ThermalState thermalState) {
  if (!celsius || !std::isfinite(*celsius)) return QString::fromStdString(thermalPhrase(thermalState));
  return QString::number(std::llround(*celsius)) + QStringLiteral(" °C");
}

std::vector<ExtrasRow> systemRows(const SystemExtras& extras, ThermalState thermalState,
                                  const Formatters& formatters) {
  std::vector<ExtrasRow> rows;
  if (extras.storage) rows.push_back(storageRow(*extras.storage, formatters));
  if (extras.battery) rows.push_back(batteryRow(*extras.battery));
  rows.push_back(temperatureRow(extras.temperatureCelsius, thermalState));
  rows.push_back({.symbol = QStringLiteral("clock"),
                  .label = QStringLiteral("Uptime"),
                  .value = QString::fromStdString(UptimeFormatting::string(extras.uptime))});
  return rows;
}

}  // namespace tarn
