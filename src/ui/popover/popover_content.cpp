// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_content.hpp"

#include "format/formatting.hpp"
#include "ui/widgets/display_text.hpp"

namespace tarn {

namespace {

constexpr std::int64_t listedGroups = 8;

QString byteText(std::uint64_t byteCount) {
  return QString::fromStdString(ByteFormatting::string(byteCount, platformByteCountFormatter()));
}

QString cpuText(double percent) {
  return QString::fromStdString(CPUFormatting::string(percent, platformPercentFormatter()));
}

/// The metric's figure of a group or of a process.
template <typename Measured>
QString valueText(const Measured& measured, SortMetric metric) {
  return metric == SortMetric::cpu ? cpuText(measured.cpuPercent) : byteText(measured.footprint);
}

QString memoryDetail(const SystemMemory& memory) {
  return QStringLiteral("Wired %1 · Compressed %2 · Cached files %3 · Swap %4")
      .arg(byteText(memory.wired), byteText(memory.compressed), byteText(memory.cachedFiles),
           byteText(memory.swapUsed));
}

QString cpuDetail(const CPUPresentation& cpu, ThermalState thermalState) {
  return QStringLiteral("%1 of %2 cores in use · %3")
      .arg(cpuText(cpu.totalPercent), QString::number(cpu.coreCount),
           QString::fromStdString(thermalPhrase(thermalState)));
}

ProcessLine processLine(const ProcessSample& process, SortMetric metric) {
  return {process.pid, displayText(process.name), QStringLiteral("· PID %1").arg(process.pid),
          valueText(process, metric)};
}

RowContent rowContent(const AppGroup& group, SortMetric metric) {
  const bool isAggregate = group.id == everythingElseId;
  RowContent row{
      .id = group.id,
      .name = displayText(group.name),
      .bundlePath = group.bundlePath,
      .symbol = isAggregate ? QStringLiteral("ellipsis.circle.fill") : QStringLiteral("gearshape.fill"),
      .value = valueText(group, metric)};
  if (group.processCount() >= 2) {
    row.secondary = QStringLiteral("%1 background processes").arg(group.processCount());
  }
  return row;
}

}  // namespace

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
                     const CPUPresentation& cpu, ThermalState thermalState) {
  if (!snapshot || tab == PopoverTab::system) return QStringLiteral(" ");
  return tab == PopoverTab::cpu ? cpuDetail(cpu, thermalState) : memoryDetail(snapshot->system);
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
                                        const std::set<std::string>& expanded) {
  const SortMetric metric = tab == PopoverTab::cpu ? SortMetric::cpu : SortMetric::memory;
  const TopGroups top = snapshot.topGroups(metric, listedGroups);
  std::vector<RowContent> rows;
  rows.reserve(top.rows.size() + 1);
  for (const AppGroup& group : top.rows) {
    RowContent& row = rows.emplace_back(rowContent(group, metric));
    row.canOpen = true;
    row.isExpanded = expanded.contains(group.id);
    if (!row.isExpanded) continue;
    for (const ProcessSample& process : group.processes)
      row.processes.push_back(processLine(process, metric));
  }
  if (top.everythingElse) rows.push_back(rowContent(*top.everythingElse, metric));
  return rows;
}

}  // namespace tarn
