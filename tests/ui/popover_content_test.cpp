// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_content.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <vector>

#include "ui/plain_formatters.hpp"

namespace tarn {
namespace {

constexpr std::uint64_t kilobyte = 1024;
constexpr std::uint64_t megabyte = 1024 * kilobyte;
constexpr std::uint64_t gigabyte = 1024 * megabyte;

AppGroup group(const std::string& name, std::uint64_t footprint, double cpuPercent, int processes = 1) {
  AppGroup result{.id = "/Applications/" + name + ".app",
                  .name = name,
                  .bundlePath = "/Applications/" + name + ".app",
                  .footprint = footprint,
                  .cpuPercent = cpuPercent};
  for (int i = 0; i < processes; ++i) {
    result.processes.push_back({.pid = 100 + i,
                                .name = name + std::to_string(i),
                                .footprint = footprint / static_cast<std::uint64_t>(processes),
                                .cpuPercent = cpuPercent / processes});
  }
  return result;
}

/// Groups "App1" to "AppN": the first has the largest footprint, the last has the highest CPU share.
MemorySnapshot snapshotOf(int groups) {
  MemorySnapshot snapshot;
  for (int i = 1; i <= groups; ++i) {
    const auto weight = static_cast<std::uint64_t>(groups + 1 - i);
    snapshot.groups.push_back(group("App" + std::to_string(i), weight * megabyte, i, i));
  }
  return snapshot;
}

std::vector<std::string> namesOf(const std::vector<RowContent>& rows) {
  std::vector<std::string> names;
  names.reserve(rows.size());
  for (const RowContent& row : rows) names.push_back(row.name.toStdString());
  return names;
}

std::vector<RowContent> rowsOf(const MemorySnapshot& snapshot, PopoverTab tab,
                               const std::set<std::string>& expanded) {
  return applicationRows(snapshot, tab, expanded, plainFormatters());
}

std::string detail(PopoverTab tab, const std::optional<MemorySnapshot>& snapshot,
                   const CPUPresentation& cpu = {}, ThermalState thermalState = ThermalState::unknown) {
  return detailString(tab, snapshot, cpu, thermalState, plainFormatters()).toStdString();
}

TEST(StatusLine, DescribesPressureAndSwapOnTheMemoryTab) {
  struct Case {
    MemoryPressure pressure;
    std::uint64_t swapUsed;
    Tint tint;
    const char* text;
  };
  constexpr auto coping = "Your Mac is coping, but has started using the disk as overflow.";
  constexpr auto runningShort = "Your Mac is running short on memory. Closing an app below would help.";
  constexpr auto outOfMemory = "Your Mac is out of memory. Close something now.";
  for (const Case& expected : {Case{MemoryPressure::normal, 0, Tint::green, "Your Mac has memory to spare."},
                               Case{MemoryPressure::normal, 1, Tint::orange, coping},
                               Case{MemoryPressure::normal, gigabyte, Tint::orange, coping},
                               Case{MemoryPressure::warning, 0, Tint::orange, runningShort},
                               Case{MemoryPressure::warning, gigabyte, Tint::orange, runningShort},
                               Case{MemoryPressure::critical, 0, Tint::red, outOfMemory},
                               Case{MemoryPressure::critical, gigabyte, Tint::red, outOfMemory}}) {
    const HeaderLine line = statusLine(PopoverTab::memory, {expected.pressure, expected.swapUsed}, {1000, 4});
    EXPECT_EQ(line.symbol, "memorychip");
    EXPECT_EQ(line.tint, expected.tint) << expected.text;
    EXPECT_EQ(line.text.toStdString(), expected.text);
  }
}

TEST(StatusLine, TintsTheProcessorFrom85PercentOfAllCores) {
  const auto tintOf = [](double totalPercent, int cores) {
    const HeaderLine line = statusLine(PopoverTab::cpu, {MemoryPressure::critical, 1}, {totalPercent, cores});
    EXPECT_EQ(line.symbol, "cpu");
    return line.tint;
  };
  EXPECT_EQ(tintOf(340, 4), Tint::orange);
  EXPECT_EQ(tintOf(339.9, 4), Tint::secondary);
  EXPECT_EQ(tintOf(0, 4), Tint::secondary);
  EXPECT_EQ(tintOf(500, 4), Tint::orange);
  EXPECT_EQ(tintOf(500, 0), Tint::secondary);
  EXPECT_EQ(tintOf(500, -1), Tint::secondary);
  EXPECT_EQ(tintOf(-500, 4), Tint::secondary);
  EXPECT_EQ(tintOf(std::numeric_limits<double>::quiet_NaN(), 4), Tint::secondary);
}

TEST(StatusLine, DescribesTheProcessorLoadOnTheCPUTab) {
  const auto text = [](double totalPercent, int cores) {
    return statusLine(PopoverTab::cpu, {}, {totalPercent, cores}).text.toStdString();
  };
  EXPECT_EQ(text(119.9, 8), "Your Mac's processor is mostly idle.");
  EXPECT_EQ(text(120, 8), "Your Mac's processor is doing light work.");
  EXPECT_EQ(text(200, 4), "Your Mac's processor is working hard.");
  EXPECT_EQ(text(340, 4), "Your Mac's processor is running flat out.");
  EXPECT_EQ(text(900, 4), "Your Mac's processor is running flat out.");
  EXPECT_EQ(text(900, 0), "Your Mac's processor is mostly idle.");
}

TEST(StatusLine, IsConstantOnTheSystemTab) {
  const HeaderLine line = statusLine(PopoverTab::system, {MemoryPressure::critical, 1}, {400, 4});
  EXPECT_EQ(line, (HeaderLine{"desktopcomputer", Tint::secondary, "A few things worth knowing."}));
}

TEST(DetailString, ShowsTheMemoryFiguresInOneLine) {
  MemorySnapshot snapshot;
  snapshot.system = {.totalRAM = 16 * gigabyte,
                     .wired = 1 * gigabyte,
                     .compressed = 0,
                     .cachedFiles = 6 * gigabyte + gigabyte / 2,
                     .swapUsed = 12 * megabyte};
  EXPECT_EQ(detail(PopoverTab::memory, snapshot),
            "Wired 1 GB · Compressed 0 bytes · Cached files 6.5 GB · Swap 12 MB");
}

TEST(DetailString, ShowsProcessorShareCoresAndThermalState) {
  const auto phrase = [](ThermalState state) {
    return detail(PopoverTab::cpu, MemorySnapshot{}, {710, 8}, state);
  };
  EXPECT_EQ(phrase(ThermalState::nominal), "710% of 8 cores in use · Running cool");
  EXPECT_EQ(phrase(ThermalState::fair), "710% of 8 cores in use · Warming up");
  EXPECT_EQ(phrase(ThermalState::serious), "710% of 8 cores in use · Running hot");
  EXPECT_EQ(phrase(ThermalState::critical), "710% of 8 cores in use · Overheating");
  EXPECT_EQ(phrase(ThermalState::unknown), "710% of 8 cores in use · Temperature unknown");
  EXPECT_EQ(phrase(static_cast<ThermalState>(7)), "710% of 8 cores in use · Temperature unknown");
}

TEST(DetailString, IsASingleSpaceBeforeTheFirstSnapshot) {
  EXPECT_EQ(detail(PopoverTab::memory, std::nullopt), " ");
  EXPECT_EQ(detail(PopoverTab::cpu, std::nullopt, {400, 4}), " ");
  EXPECT_EQ(detail(PopoverTab::system, std::nullopt), " ");
  EXPECT_EQ(detail(PopoverTab::system, MemorySnapshot{}), " ");
}

TEST(FixedTexts, ExplainTheFiguresAndTheirSource) {
  EXPECT_EQ(explainer(PopoverTab::memory).toStdString(),
            "Cached files are free space macOS is borrowing — it gives them back instantly.");
  EXPECT_EQ(explainer(PopoverTab::cpu).toStdString(),
            "CPU is shown as a share of one core, like Activity Monitor — a busy app can pass 100%.");
  EXPECT_EQ(systemFootnote().toStdString(),
            "All read locally with no special privileges. Temperature falls back to the system's own reading "
            "when no "
            "sensor is available.");
}

TEST(ApplicationRows, ListsEightGroupsAndSumsUpTheOthers) {
  const auto rows = rowsOf(snapshotOf(12), PopoverTab::memory, {});
  EXPECT_EQ(namesOf(rows), (std::vector<std::string>{"App1", "App2", "App3", "App4", "App5", "App6", "App7",
                                                     "App8", "Everything else"}));
  EXPECT_EQ(rows.back().id, "everything-else");
  EXPECT_EQ(rows.back().value, "10 MB");                        // 4 + 3 + 2 + 1
  EXPECT_EQ(rows.back().secondary, "42 background processes");  // 9 + 10 + 11 + 12
}

TEST(ApplicationRows, RanksAndShowsTheTabsMetric) {
  const auto byCPU = rowsOf(snapshotOf(12), PopoverTab::cpu, {"/Applications/App12.app"});
  EXPECT_EQ(namesOf(byCPU), (std::vector<std::string>{"App12", "App11", "App10", "App9", "App8", "App7",
                                                      "App6", "App5", "Everything else"}));
  EXPECT_EQ(byCPU.front().value, "12%");
  EXPECT_EQ(byCPU.back().value, "10%");
  ASSERT_EQ(byCPU.front().processes.size(), 12U);
  for (const RowContent& row : byCPU) {
    EXPECT_TRUE(row.value.endsWith('%'));
    for (const ProcessLine& line : row.processes) EXPECT_EQ(line.value, "1%");
  }
  for (const RowContent& row : rowsOf(snapshotOf(12), PopoverTab::memory, {"/Applications/App2.app"})) {
    EXPECT_TRUE(row.value.endsWith("MB"));
    for (const ProcessLine& line : row.processes) EXPECT_EQ(line.value, "5.5 MB");
  }
}

TEST(ApplicationRows, HasNoSummaryRowForEightGroups) {
  EXPECT_EQ(rowsOf(snapshotOf(8), PopoverTab::memory, {}).size(), 8U);
  EXPECT_EQ(rowsOf(snapshotOf(8), PopoverTab::cpu, {}).size(), 8U);
  EXPECT_EQ(rowsOf(snapshotOf(9), PopoverTab::cpu, {}).size(), 9U);
  EXPECT_TRUE(rowsOf({}, PopoverTab::memory, {}).empty());
}

TEST(ApplicationRows, ShowsTheProcessCountFromTwoProcesses) {
  MemorySnapshot snapshot;
  snapshot.groups = {group("Three", 3, 0, 3), group("Two", 2, 0, 2), group("One", 1, 0, 1)};
  const auto rows = rowsOf(snapshot, PopoverTab::memory, {});
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows[0].secondary, "3 background processes");
  EXPECT_EQ(rows[1].secondary, "2 background processes");
  EXPECT_FALSE(rows[2].secondary.has_value());
}

TEST(ApplicationRows, ListsTheProcessesOfExpandedGroupsInTheirOrder) {
  MemorySnapshot snapshot;
  AppGroup mail = group("Mail", 3 * megabyte, 0);
  mail.processes = {{.pid = 41, .name = "Mail", .footprint = 2 * megabyte},
                    {.pid = 7, .name = "mail-sync", .footprint = 512 * kilobyte},
                    {.pid = 2147483647, .name = "mail-indexer", .footprint = 512 * kilobyte}};
  snapshot.groups = {mail, group("Files", megabyte, 0)};
  const auto rows = rowsOf(snapshot, PopoverTab::memory, {mail.id, "not in the snapshot", "everything-else"});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_TRUE(rows[0].isExpanded);
  EXPECT_EQ(rows[0].processes,
            (std::vector<ProcessLine>{{41, "Mail", "· PID 41", "2 MB"},
                                      {7, "mail-sync", "· PID 7", "512 KB"},
                                      {2147483647, "mail-indexer", "· PID 2147483647", "512 KB"}}));
  EXPECT_FALSE(rows[1].isExpanded);
  EXPECT_TRUE(rows[1].processes.empty());
}

TEST(ApplicationRows, NeverExpandsTheSummaryRow) {
  const auto rows = rowsOf(snapshotOf(9), PopoverTab::memory, {"everything-else"});
  EXPECT_FALSE(rows.back().canExpand);
  EXPECT_FALSE(rows.back().isExpanded);
  EXPECT_TRUE(rows.back().processes.empty());
  for (std::size_t i = 0; i < 8; ++i) EXPECT_TRUE(rows[i].canExpand);
}

TEST(ApplicationRows, HasASymbolForRowsWithoutABundle) {
  MemorySnapshot snapshot = snapshotOf(10);
  snapshot.groups[0].bundlePath.reset();
  snapshot.groups[0].id = "pid:100";
  const auto rows = rowsOf(snapshot, PopoverTab::memory, {});
  EXPECT_EQ(rows[0].bundlePath, std::nullopt);
  EXPECT_EQ(rows[0].symbol, "gearshape.fill");
  EXPECT_EQ(rows[1].bundlePath, "/Applications/App2.app");
  EXPECT_EQ(rows.back().bundlePath, std::nullopt);
  EXPECT_EQ(rows.back().symbol, "ellipsis.circle.fill");
}

TEST(ApplicationRows, ShowsNamesThroughDisplayText) {
  MemorySnapshot snapshot;
  snapshot.groups = {group("a\nb\x1b", 2, 0)};
  snapshot.groups[0].processes[0].name = "<b>\u202Eevil";
  const auto rows = rowsOf(snapshot, PopoverTab::memory, {snapshot.groups[0].id});
  EXPECT_EQ(rows[0].name, "a\uFFFDb\uFFFD");
  EXPECT_EQ(rows[0].processes[0].name, "<b>\uFFFDevil");
}

std::string shown(const std::string& text) {
  return displayText(text).toStdString();
}

TEST(DisplayText, LeavesOrdinaryNamesUnchanged) {
  for (const std::string name :
       {"Firefox", "<b>Firefox & Co.</b>", "Ångström", "電卓", "حاسبة", "👩‍💻 Work", ""}) {
    EXPECT_EQ(shown(name), name);
  }
}

TEST(DisplayText, ReplacesControlCharactersAndLineBreaks) {
  EXPECT_EQ(shown("a\nb\rc\td\x1b[31m\x7f"), "a\uFFFDb\uFFFDc\uFFFDd\uFFFD[31m\uFFFD");
  EXPECT_EQ(shown("a\u0085b\u2028c\u2029d"), "a\uFFFDb\uFFFDc\uFFFDd");
  EXPECT_EQ(shown(std::string("a\0b", 3)), "a\uFFFDb");
}

TEST(DisplayText, ReplacesBidirectionalFormattingCharacters) {
  for (const std::string mark : {"\u061C", "\u200E", "\u200F", "\u202A", "\u202B", "\u202C", "\u202D",
                                 "\u202E", "\u2066", "\u2067", "\u2068", "\u2069"}) {
    EXPECT_EQ(shown("a" + mark + "b"), "a\uFFFDb");
  }
}

TEST(DisplayText, ReplacesInvalidUTF8) {
  EXPECT_EQ(shown("a\xff\xfe"), "a\uFFFD\uFFFD");
  EXPECT_EQ(shown("\xc3"), "\uFFFD");
}

TEST(DisplayText, HasBoundedLength) {
  const QString text = displayText(std::string(std::size_t{128} * 1024, 'x'));
  EXPECT_GE(text.size(), 100);
  EXPECT_LE(text.size(), 1024);
}

}  // namespace
}  // namespace tarn
