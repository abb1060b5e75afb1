// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/presentation.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

void expectAppearance(const StatusPresentation& status, const char* symbol, Tint tint,
                      const char* accessibilityText, const char* sentence) {
  const StatusAppearance appearance = status.appearance();
  EXPECT_EQ(appearance.symbolName, symbol);
  EXPECT_EQ(appearance.tint, tint);
  EXPECT_EQ(appearance.accessibilityText, accessibilityText);
  EXPECT_EQ(appearance.sentence, sentence);
}

TEST(StatusPresentation, IsAGreenCircleAtNormalPressureWithoutSwap) {
  expectAppearance({MemoryPressure::normal, 0}, "circle", Tint::green, "Memory normal",
                   "Your Mac has memory to spare.");
}

TEST(StatusPresentation, IsAHalfFilledOrangeCircleWhenAnySwapIsUsed) {
  for (const std::uint64_t swap : {std::uint64_t{1}, std::numeric_limits<std::uint64_t>::max()}) {
    expectAppearance({MemoryPressure::normal, swap}, "circle.lefthalf.filled", Tint::orange,
                     "Memory normal, using swap",
                     "Your Mac is coping, but has started using the disk as overflow.");
  }
}

TEST(StatusPresentation, IsAHalfFilledOrangeCircleAtWarningForAnySwap) {
  for (const std::uint64_t swap : {0U, 1U, 1'000'000U}) {
    expectAppearance({MemoryPressure::warning, swap}, "circle.lefthalf.filled", Tint::orange,
                     "Memory pressure warning",
                     "Your Mac is running short on memory. Closing an app below would help.");
  }
}

TEST(StatusPresentation, IsAFilledRedCircleAtCriticalForAnySwap) {
  for (const std::uint64_t swap : {0U, 1U, 1'000'000U}) {
    expectAppearance({MemoryPressure::critical, swap}, "circle.fill", Tint::red, "Memory pressure critical",
                     "Your Mac is out of memory. Close something now.");
  }
}

constexpr auto idle = "Your Mac's processor is mostly idle.";
constexpr auto light = "Your Mac's processor is doing light work.";
constexpr auto hard = "Your Mac's processor is working hard.";
constexpr auto flatOut = "Your Mac's processor is running flat out.";

std::string sentence(double totalPercent, int coreCount) {
  return CPUPresentation{totalPercent, coreCount}.sentence();
}

TEST(CPUSentence, IncludesTheLowerBoundOfItsLoad) {
  EXPECT_EQ(sentence(120, 8), light);
  EXPECT_EQ(sentence(400, 8), hard);
  EXPECT_EQ(sentence(680, 8), flatOut);
  EXPECT_EQ(sentence(15, 1), light);
  EXPECT_EQ(sentence(50, 1), hard);
  EXPECT_EQ(sentence(85, 1), flatOut);
  EXPECT_EQ(sentence(340, 4), flatOut);
}

TEST(CPUSentence, ExcludesTheUpperBoundOfItsLoad) {
  EXPECT_EQ(sentence(119.9, 8), idle);
  EXPECT_EQ(sentence(399.9, 8), light);
  EXPECT_EQ(sentence(679.9, 8), hard);
  EXPECT_EQ(sentence(14.999, 1), idle);
  EXPECT_EQ(sentence(49.999, 1), light);
  EXPECT_EQ(sentence(84.999, 1), hard);
}

TEST(CPUSentence, IsFlatOutAtFullLoadAndAbove) {
  EXPECT_EQ(sentence(799.9, 8), flatOut);
  EXPECT_EQ(sentence(800, 8), flatOut);
  EXPECT_EQ(sentence(1200, 8), flatOut);
  EXPECT_EQ(sentence(infinite, 8), flatOut);
}

TEST(CPUSentence, IsIdleForZeroNegativeAndNaN) {
  EXPECT_EQ(sentence(0, 8), idle);
  EXPECT_EQ(sentence(-1, 8), idle);
  EXPECT_EQ(sentence(-10000, 8), idle);
  EXPECT_EQ(sentence(-infinite, 8), idle);
  EXPECT_EQ(sentence(notANumber, 8), idle);
}

TEST(CPUSentence, IsIdleWithoutCores) {
  for (const int cores : {0, -1, -100}) {
    EXPECT_EQ(sentence(800, cores), idle);
    EXPECT_EQ(sentence(-800, cores), idle);
    EXPECT_EQ((CPUPresentation{800, cores}.load()), std::nullopt);
  }
}

TEST(CPULoad, IsTheFractionOfTheWholeMachine) {
  EXPECT_EQ((CPUPresentation{120, 8}.load()), 0.15);
  EXPECT_EQ((CPUPresentation{0, 1}.load()), 0);
  EXPECT_EQ((CPUPresentation{1600, 8}.load()), 2);
}

TEST(CPUTint, IsOrangeWhenFlatOut) {
  EXPECT_EQ((CPUPresentation{340, 4}.tint()), Tint::orange);
  EXPECT_EQ((CPUPresentation{1000, 4}.tint()), Tint::orange);
  EXPECT_EQ((CPUPresentation{339.9, 4}.tint()), Tint::secondary);
}

TEST(CPUTint, IsSecondaryForInvalidLoads) {
  EXPECT_EQ((CPUPresentation{-340, 4}.tint()), Tint::secondary);
  EXPECT_EQ((CPUPresentation{notANumber, 4}.tint()), Tint::secondary);
  EXPECT_EQ((CPUPresentation{340, 0}.tint()), Tint::secondary);
}

AppGroup group(std::string id, std::optional<std::string> bundlePath, const std::vector<std::int32_t>& pids) {
  AppGroup group{.id = std::move(id), .bundlePath = std::move(bundlePath)};
  for (const std::int32_t pid : pids) group.processes.push_back({.pid = pid});
  return group;
}

/// Returns the id of the application's group, or "none".
std::string idOfGroup(const FrontmostApplication& application, const MemorySnapshot& snapshot) {
  const AppGroup* group = groupOf(application, snapshot);
  return group == nullptr ? "none" : group->id;
}

TEST(GroupOf, ReturnsTheFirstOfTwoGroupsWithTheSameBundlePath) {
  const MemorySnapshot snapshot{.groups = {group("other", "/opt/B.app", {9}),
                                           group("first", "/opt/A.app", {1}),
                                           group("second", "/opt/A.app", {2})}};
  EXPECT_EQ(idOfGroup({.bundlePath = "/opt/A.app", .processIdentifier = 2}, snapshot), "first");
}

TEST(GroupOf, PrefersTheBundlePathToTheProcess) {
  const MemorySnapshot snapshot{
      .groups = {group("holder", "/opt/B.app", {7}), group("owner", "/opt/A.app", {1})}};
  EXPECT_EQ(idOfGroup({.bundlePath = "/opt/A.app", .processIdentifier = 7}, snapshot), "owner");
}

TEST(GroupOf, ReturnsTheFirstGroupWithTheProcessWhenNoPathMatches) {
  const MemorySnapshot snapshot{.groups = {group("a", "/opt/A.app", {1, 2}),
                                           group("b", std::nullopt, {3, 7, 4}),
                                           group("c", "/opt/C.app", {7})}};
  EXPECT_EQ(idOfGroup({.processIdentifier = 7}, snapshot), "b");
  EXPECT_EQ(idOfGroup({.bundlePath = "/opt/Z.app", .processIdentifier = 7}, snapshot), "b");
}

TEST(GroupOf, DoesNotMatchPartsOfPathsOrIds) {
  const MemorySnapshot snapshot{
      .groups = {group("/opt/A.app", std::nullopt, {1}), group("b", "/opt/A.app/", {2})}};
  EXPECT_EQ(idOfGroup({.bundlePath = "/opt/A.app", .processIdentifier = 3}, snapshot), "none");
  EXPECT_EQ(idOfGroup({.bundlePath = "", .processIdentifier = 3}, snapshot), "none");
  EXPECT_EQ(idOfGroup({.processIdentifier = 3}, MemorySnapshot{}), "none");
}

TEST(GroupOf, ReturnsNullForInvalidPids) {
  const MemorySnapshot snapshot{.groups = {group("a", "/opt/A.app", {1}), group("b", std::nullopt, {2})}};
  EXPECT_EQ(idOfGroup({}, snapshot), "none");
  EXPECT_EQ(idOfGroup({.processIdentifier = -1}, snapshot), "none");
}

}  // namespace
}  // namespace tarn
