// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/snapshot.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "sampling/checked_arithmetic.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t maxFootprint = std::numeric_limits<std::uint64_t>::max();

AppGroup group(std::string id, std::uint64_t footprint, double cpuPercent, std::size_t processCount = 1) {
  AppGroup group{.id = std::move(id), .footprint = footprint, .cpuPercent = cpuPercent};
  group.processes.resize(processCount);
  return group;
}

/// Largest footprint first, as the sampler orders them.
MemorySnapshot fourGroups() {
  return {.groups = {group("a", 400, 1.5, 4), group("b", 300, 0, 3), group("c", 200, 30, 2),
                     group("d", 100, 1.5, 1)}};
}

std::vector<std::string> ids(const std::vector<AppGroup>& groups) {
  std::vector<std::string> ids;
  ids.reserve(groups.size());
  for (const AppGroup& group : groups) ids.push_back(group.id);
  return ids;
}

TEST(SharedText, ComparesEqualToItsText) {
  const SharedText text = "/usr/bin/editor";
  EXPECT_EQ(text, "/usr/bin/editor");
  EXPECT_EQ(text, SharedText(std::string("/usr/bin/editor")));
  EXPECT_FALSE(text == SharedText("/usr/bin/other"));
  EXPECT_EQ(std::string_view(text).size(), 15U);
}

TEST(SharedText, CopiesShareOneBuffer) {
  const SharedText text = "/usr/bin/editor";
  SharedText copy;
  copy = text;
  EXPECT_EQ(&copy.string(), &text.string());
}

TEST(SharedText, IsEmptyWithoutText) {
  EXPECT_TRUE(SharedText().empty());
  EXPECT_TRUE(SharedText("").empty());
  EXPECT_EQ(SharedText(), "");
  EXPECT_EQ(SharedText().string(), "");
}

TEST(MemoryPressure, HasTheLevelNumbersOfTheKernel) {
  EXPECT_EQ(static_cast<std::int32_t>(MemoryPressure::normal), 1);
  EXPECT_EQ(static_cast<std::int32_t>(MemoryPressure::warning), 2);
  EXPECT_EQ(static_cast<std::int32_t>(MemoryPressure::critical), 4);
}

TEST(MemoryPressure, ComesFromItsRawValue) {
  EXPECT_EQ(memoryPressureFromRawValue(1), MemoryPressure::normal);
  EXPECT_EQ(memoryPressureFromRawValue(2), MemoryPressure::warning);
  EXPECT_EQ(memoryPressureFromRawValue(4), MemoryPressure::critical);
}

TEST(MemoryPressure, RejectsOtherRawValues) {
  for (const std::int32_t number : {0, 3, 5, 6, 7, 8, -1, -4, std::numeric_limits<std::int32_t>::max(),
                                    std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(memoryPressureFromRawValue(number), std::nullopt) << number;
  }
}

TEST(MemoryPressureReading, IsTheLevelOfTheKernel) {
  EXPECT_EQ(memoryPressureFromReading(1), MemoryPressure::normal);
  EXPECT_EQ(memoryPressureFromReading(2), MemoryPressure::warning);
  EXPECT_EQ(memoryPressureFromReading(4), MemoryPressure::critical);
}

TEST(MemoryPressureReading, IsNormalForUnknownNumbersAndFailedReadings) {
  for (const std::int32_t number : {0, 3, 5, 6, -2}) {
    EXPECT_EQ(memoryPressureFromReading(number), MemoryPressure::normal) << number;
  }
  EXPECT_EQ(memoryPressureFromReading(std::nullopt), MemoryPressure::normal);
}

TEST(AppGroup, CountsItsProcesses) {
  EXPECT_EQ(group("a", 0, 0, 0).processCount(), 0U);
  EXPECT_EQ(group("a", 0, 0, 3).processCount(), 3U);
}

TEST(AppGroup, WithProcessCountReplacesOnlyTheProcesses) {
  AppGroup original = group("/opt/A.app", 12, 3.5, 2);
  original.name = "A";
  original.bundlePath = "/opt/A.app";
  original.processes[0].pid = 99;

  const AppGroup counted = original.withProcessCount(5);
  EXPECT_EQ(counted.processCount(), 5U);
  for (const ProcessSample& process : counted.processes) EXPECT_EQ(process, ProcessSample{});
  AppGroup expected = original;
  expected.processes = std::vector<ProcessSample>(5);
  EXPECT_EQ(counted, expected);
}

TEST(AppGroup, WithProcessCountAcceptsZero) {
  EXPECT_THAT(group("a", 1, 1, 2).withProcessCount(0).processes, IsEmpty());
}

TEST(AppGroupDeathTest, WithProcessCountAbortsOnANegativeCount) {
  EXPECT_DEATH(group("a", 1, 1).withProcessCount(-1), "");
}

TEST(MemorySnapshot, HasZeroTotalsAndNoRowsWithoutGroups) {
  const MemorySnapshot empty;
  EXPECT_EQ(empty.attributedTotal(), 0U);
  EXPECT_EQ(empty.totalCPUPercent(), 0);
  for (const std::int64_t limit : {0, 1, 8}) {
    const TopGroups top = empty.topGroups(SortMetric::cpu, limit);
    EXPECT_THAT(top.rows, IsEmpty());
    EXPECT_EQ(top.everythingElse, std::nullopt);
  }
}

TEST(MemorySnapshot, SumsUpItsGroups) {
  EXPECT_EQ(fourGroups().attributedTotal(), 1000U);
  EXPECT_DOUBLE_EQ(fourGroups().totalCPUPercent(), 33);
}

TEST(MemorySnapshot, AcceptsTotalsUpToTheLargestNumber) {
  const MemorySnapshot full{.groups = {group("a", maxFootprint - 1, 0), group("b", 1, 0)}};
  EXPECT_EQ(full.attributedTotal(), maxFootprint);
}

TEST(MemorySnapshotDeathTest, AbortsWhenTheTotalOverflows) {
  const MemorySnapshot overflowing{.groups = {group("a", maxFootprint, 0), group("b", 1, 0)}};
  EXPECT_DEATH(std::ignore = overflowing.attributedTotal(), "");
}

TEST(TopGroups, SortsByMemory) {
  MemorySnapshot snapshot = fourGroups();
  std::swap(snapshot.groups[0], snapshot.groups[3]);
  EXPECT_THAT(ids(snapshot.topGroups(SortMetric::memory, 4).rows), ElementsAre("a", "b", "c", "d"));
}

TEST(TopGroups, ComparesFootprintsAsUnsignedNumbers) {
  const MemorySnapshot snapshot{.groups = {group("small", 1, 0), group("huge", maxFootprint, 0)}};
  EXPECT_THAT(ids(snapshot.topGroups(SortMetric::memory, 2).rows), ElementsAre("huge", "small"));
}

TEST(TopGroups, SortsByCPUAndKeepsTheOrderOfEqualGroups) {
  EXPECT_THAT(ids(fourGroups().topGroups(SortMetric::cpu, 4).rows), ElementsAre("c", "a", "d", "b"));
}

TEST(TopGroups, KeepsTheOrderOfManyEqualGroups) {
  MemorySnapshot snapshot;
  std::vector<std::string> expected;
  for (int i = 0; i < 100; ++i) {
    expected.push_back(std::to_string(i));
    snapshot.groups.push_back(group(expected.back(), 5, 2));
  }
  EXPECT_EQ(ids(snapshot.topGroups(SortMetric::memory, 100).rows), expected);
  EXPECT_EQ(ids(snapshot.topGroups(SortMetric::cpu, 100).rows), expected);
}

TEST(TopGroups, DoesNotChangeTheSnapshot) {
  const MemorySnapshot snapshot = fourGroups();
  std::ignore = snapshot.topGroups(SortMetric::cpu, 2);
  EXPECT_EQ(snapshot, fourGroups());
}

TEST(TopGroups, HasNoAggregateWhenEveryGroupFits) {
  for (const std::int64_t limit : {4, 5, 1000}) {
    const TopGroups top = fourGroups().topGroups(SortMetric::memory, limit);
    EXPECT_EQ(top.rows.size(), 4U);
    EXPECT_EQ(top.everythingElse, std::nullopt);
  }
}

TEST(TopGroups, PutsOneExcessGroupIntoTheAggregate) {
  const TopGroups top = fourGroups().topGroups(SortMetric::cpu, 3);
  EXPECT_THAT(ids(top.rows), ElementsAre("c", "a", "d"));
  ASSERT_TRUE(top.everythingElse);
  EXPECT_EQ(top.everythingElse->footprint, 300U);
  EXPECT_EQ(top.everythingElse->cpuPercent, 0);
  EXPECT_EQ(top.everythingElse->processCount(), 3U);
}

TEST(TopGroups, FillsInIdNameAndProcessCountOfTheAggregate) {
  const TopGroups top = fourGroups().topGroups(SortMetric::memory, 2);
  const AppGroup expected{.id = "everything-else",
                          .name = "Everything else",
                          .bundlePath = std::nullopt,
                          .footprint = 300,
                          .cpuPercent = 31.5,
                          .processes = std::vector<ProcessSample>(3)};
  EXPECT_EQ(top.everythingElse, expected);
}

TEST(TopGroups, PutsAllGroupsIntoTheAggregateWithLimitZero) {
  const TopGroups top = fourGroups().topGroups(SortMetric::memory, 0);
  EXPECT_THAT(top.rows, IsEmpty());
  ASSERT_TRUE(top.everythingElse);
  EXPECT_EQ(top.everythingElse->footprint, 1000U);
  EXPECT_DOUBLE_EQ(top.everythingElse->cpuPercent, 33);
  EXPECT_EQ(top.everythingElse->processCount(), 10U);
}

TEST(TopGroupsDeathTest, AbortsOnANegativeLimit) {
  EXPECT_DEATH(std::ignore = fourGroups().topGroups(SortMetric::memory, -1), "");
  EXPECT_DEATH(std::ignore = MemorySnapshot{}.topGroups(SortMetric::memory, -1), "");
}

TEST(TopGroupsDeathTest, AbortsWhenTheAggregateOverflows) {
  const MemorySnapshot overflowing{
      .groups = {group("a", maxFootprint, 0), group("b", maxFootprint, 0), group("c", 1, 0)}};
  EXPECT_EQ(overflowing.topGroups(SortMetric::memory, 2).everythingElse->footprint, 1U);
  EXPECT_DEATH(std::ignore = overflowing.topGroups(SortMetric::memory, 1), "");
}

TEST(CheckedAddDeathTest, AbortsWhenASumOfCountsOverflows) {
  constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(checkedAdd(largest - 1, std::int64_t{1}), largest);
  EXPECT_DEATH(std::ignore = checkedAdd(largest, std::int64_t{1}), "");
}

}  // namespace
}  // namespace tarn
