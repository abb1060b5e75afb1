// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include "monitor/view_model_fixture.hpp"

namespace tarn {
namespace {

AppGroup group(std::string id, std::optional<std::string> bundlePath, const std::vector<std::int32_t>& pids) {
  AppGroup group{.id = std::move(id), .bundlePath = std::move(bundlePath)};
  for (const std::int32_t pid : pids) group.processes.push_back({.pid = pid});
  return group;
}

/// The id of the group that stands for the application; "none" for none.
std::string shownAs(const FrontmostApplication& application, const MemorySnapshot& snapshot) {
  const AppGroup* group = groupOf(application, snapshot);
  return group == nullptr ? "none" : group->id;
}

TEST(FrontmostGroup, IsTheFirstOfTwoWithTheSameBundlePath) {
  const MemorySnapshot snapshot{.groups = {group("other", "/opt/B.app", {9}),
                                           group("first", "/opt/A.app", {1}),
                                           group("second", "/opt/A.app", {2})}};
  EXPECT_EQ(shownAs({.bundlePath = "/opt/A.app", .processIdentifier = 2}, snapshot), "first");
}

TEST(FrontmostGroup, IsFoundByItsPathBeforeItsProcess) {
  const MemorySnapshot snapshot{
      .groups = {group("holder", "/opt/B.app", {7}), group("owner", "/opt/A.app", {1})}};
  EXPECT_EQ(shownAs({.bundlePath = "/opt/A.app", .processIdentifier = 7}, snapshot), "owner");
}

TEST(FrontmostGroup, IsTheFirstThatHoldsItsProcessWhereNoPathMatches) {
  const MemorySnapshot snapshot{.groups = {group("a", "/opt/A.app", {1, 2}),
                                           group("b", std::nullopt, {3, 7, 4}),
                                           group("c", "/opt/C.app", {7})}};
  EXPECT_EQ(shownAs({.processIdentifier = 7}, snapshot), "b");
  EXPECT_EQ(shownAs({.bundlePath = "/opt/Z.app", .processIdentifier = 7}, snapshot), "b");
}

TEST(FrontmostGroup, IsNeverFoundByPartOfAPathOrByAnIdAlone) {
  const MemorySnapshot snapshot{
      .groups = {group("/opt/A.app", std::nullopt, {1}), group("b", "/opt/A.app/", {2})}};
  EXPECT_EQ(shownAs({.bundlePath = "/opt/A.app", .processIdentifier = 3}, snapshot), "none");
  EXPECT_EQ(shownAs({.bundlePath = "", .processIdentifier = 3}, snapshot), "none");
  EXPECT_EQ(shownAs({.processIdentifier = 3}, MemorySnapshot{}), "none");
}

TEST(FrontmostGroup, IsNoneForAProcessThatHasNoNumber) {
  const MemorySnapshot snapshot{.groups = {group("a", "/opt/A.app", {1}), group("b", std::nullopt, {2})}};
  EXPECT_EQ(shownAs({}, snapshot), "none");
  EXPECT_EQ(shownAs({.processIdentifier = -1}, snapshot), "none");
}

TEST_F(ViewModelTest, ShowsTheWholeGroupOfTheFrontmostApplication) {
  frontmost_ = FrontmostApplication{.bundlePath = "/opt/A.app", .processIdentifier = 11};
  startAndSettle();
  EXPECT_EQ(model_->frontmostFootprint(), 900U);
}

TEST_F(ViewModelTest, FindsAFrontmostApplicationWithoutABundleByItsProcess) {
  frontmost_ = FrontmostApplication{.processIdentifier = 20};
  startAndSettle();
  EXPECT_EQ(model_->frontmostFootprint(), 50U);
  frontmost_ = FrontmostApplication{.processIdentifier = 11};
  pass(30);
  finishSweep();
  EXPECT_EQ(model_->frontmostFootprint(), 900U) << "the whole group, never one process";
}

TEST_F(ViewModelTest, HasNoFrontmostFootprintWhereTheApplicationIsNotInTheSnapshot) {
  frontmost_ = FrontmostApplication{.bundlePath = "/opt/A.app"};
  startAndSettle();
  frontmost_ = FrontmostApplication{.bundlePath = "/opt/Z.app", .processIdentifier = 99};
  pass(30);
  finishSweep();
  EXPECT_EQ(model_->frontmostFootprint(), std::nullopt);
}

TEST_F(ViewModelTest, HasNoFrontmostFootprintWhereNoApplicationIsFrontmost) {
  frontmost_ = FrontmostApplication{.bundlePath = "/opt/A.app"};
  startAndSettle();
  EXPECT_EQ(model_->frontmostFootprint(), 900U);
  frontmost_.reset();
  pass(30);
  finishSweep();
  EXPECT_EQ(model_->frontmostFootprint(), std::nullopt);
}

TEST_F(ViewModelTest, AsksForTheFrontmostApplicationWhenItPublishesAndNotBefore) {
  start();
  sweeps().runAll();
  frontmost_ = FrontmostApplication{.processIdentifier = 20};
  mainTasks().runAll();
  EXPECT_EQ(model_->frontmostFootprint(), 50U);
}

}  // namespace
}  // namespace tarn
