// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "sampling/memory_sampler.hpp"
#include "support/fake_machine.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

FakeProcess process(std::int32_t pid, std::int32_t parent, std::string path, std::uint64_t footprint = 0) {
  return {.pid = pid,
          .path = std::move(path),
          .info = BsdInfo{.ppid = parent, .uid = 501, .startSec = 1000},
          .usage = ProcessUsage{.footprint = footprint}};
}

class SamplerGrouping : public ::testing::Test {
 protected:
  /// The id of the group that contains the process; empty when no group does.
  std::string groupOf(std::int32_t pid) {
    for (const AppGroup& group : sampler_.sample().groups) {
      for (const ProcessSample& sample : group.processes) {
        if (sample.pid == pid) return group.id;
      }
    }
    return {};
  }

  AppGroup onlyGroup() {
    MemorySnapshot snapshot = sampler_.sample();
    EXPECT_EQ(snapshot.groups.size(), 1U);
    return snapshot.groups.empty() ? AppGroup{} : snapshot.groups.front();
  }

  FakeMachine machine_;
  MemorySampler sampler_{samplerPortOf(machine_)};
};

std::vector<std::int32_t> pids(const AppGroup& group) {
  std::vector<std::int32_t> pids;
  for (const ProcessSample& sample : group.processes) pids.push_back(sample.pid);
  return pids;
}

TEST_F(SamplerGrouping, GroupsProcessesByOutermostBundle) {
  machine_.processes = {process(10, 1, "/Applications/A.app/Contents/MacOS/A", 1),
                        process(11, 1, "/Applications/A.app/Contents/MacOS/helper", 2),
                        process(12, 1, "/Applications/A.app/Contents/Library/B.app/Contents/MacOS/B", 4)};
  const AppGroup group = onlyGroup();
  EXPECT_EQ(group.id, "/Applications/A.app");
  EXPECT_EQ(group.bundlePath, "/Applications/A.app");
  EXPECT_EQ(group.name, "A");
  EXPECT_EQ(group.footprint, 7U);
  EXPECT_THAT(pids(group), ElementsAre(12, 11, 10));
}

TEST_F(SamplerGrouping, PutsAProcessWithoutApplicationIntoASeparateGroup) {
  machine_.processes = {process(412, 1, "/usr/sbin/cupsd", 8)};
  const AppGroup group = onlyGroup();
  EXPECT_EQ(group.id, "pid:412");
  EXPECT_EQ(group.name, "cupsd");
  EXPECT_EQ(group.bundlePath, std::nullopt);
  EXPECT_EQ(group.footprint, 8U);
}

TEST_F(SamplerGrouping, PutsTwoProcessesOfOneExecutableIntoSeparateGroups) {
  machine_.processes = {process(10, 1, "/usr/bin/worker"), process(11, 1, "/usr/bin/worker")};
  EXPECT_EQ(groupOf(10), "pid:10");
  EXPECT_EQ(groupOf(11), "pid:11");
}

TEST_F(SamplerGrouping, NamesAGroupWithoutPathAfterItsPid) {
  machine_.processes = {process(412, 1, "")};
  EXPECT_EQ(onlyGroup().id, "pid:412");
  EXPECT_EQ(onlyGroup().name, "PID 412");
}

TEST_F(SamplerGrouping, DoesNotGroupByProcessName) {
  machine_.processes = {process(412, 1, "")};
  machine_.process(412).systemName = "/opt/A.app/a";
  EXPECT_EQ(onlyGroup().id, "pid:412");
  EXPECT_EQ(onlyGroup().name, "/opt/A.app/a");
}

TEST_F(SamplerGrouping, SortsGroupsAndProcessesByFootprint) {
  machine_.processes = {process(10, 1, "/usr/bin/small", 5), process(20, 1, "/opt/A.app/a", 3),
                        process(21, 1, "/opt/A.app/b", 9), process(30, 1, "/usr/bin/large", 100),
                        process(22, 1, "/opt/A.app/c", 6)};
  const MemorySnapshot snapshot = sampler_.sample();
  ASSERT_EQ(snapshot.groups.size(), 3U);
  EXPECT_EQ(snapshot.groups[0].id, "pid:30");
  EXPECT_EQ(snapshot.groups[1].id, "/opt/A.app");
  EXPECT_EQ(snapshot.groups[1].footprint, 18U);
  EXPECT_THAT(pids(snapshot.groups[1]), ElementsAre(21, 22, 20));
  EXPECT_EQ(snapshot.groups[2].id, "pid:10");
}

TEST_F(SamplerGrouping, AddsDescendantsToTheApplication) {
  machine_.processes = {process(10, 1, "/opt/A.app/a"), process(11, 10, "/bin/sh"), process(12, 11, "")};
  EXPECT_THAT(pids(onlyGroup()), UnorderedElementsAre(10, 11, 12));
}

TEST_F(SamplerGrouping, PrefersTheBundleOfTheProcessToThatOfItsParent) {
  machine_.processes = {process(10, 1, "/opt/A.app/a"), process(11, 10, "/opt/B.app/b")};
  EXPECT_EQ(groupOf(11), "/opt/B.app");
}

TEST_F(SamplerGrouping, PrefersTheNearestAncestor) {
  machine_.processes = {process(10, 1, "/opt/A.app/a"), process(11, 10, "/opt/B.app/b"),
                        process(12, 11, "/bin/sh")};
  EXPECT_EQ(groupOf(12), "/opt/B.app");
}

/// Pid 100 with `ancestors` ancestors, of which only the last one is an application.
std::vector<FakeProcess> chainOf(std::int32_t ancestors) {
  std::vector<FakeProcess> chain;
  chain.reserve(static_cast<std::size_t>(ancestors) + 1);
  for (std::int32_t i = 0; i < ancestors; ++i) chain.push_back(process(100 + i, 101 + i, "/bin/sh"));
  chain.push_back(process(100 + ancestors, 1, "/opt/A.app/a"));
  return chain;
}

TEST_F(SamplerGrouping, FindsTheEighthAncestor) {
  machine_.processes = chainOf(8);
  EXPECT_EQ(groupOf(100), "/opt/A.app");
}

TEST_F(SamplerGrouping, IgnoresTheNinthAncestor) {
  machine_.processes = chainOf(9);
  EXPECT_EQ(groupOf(100), "pid:100");
  EXPECT_EQ(groupOf(101), "/opt/A.app");
}

TEST_F(SamplerGrouping, StopsAtPidOne) {
  machine_.processes = {process(1, 0, "/opt/Init.app/init"), process(412, 1, "/usr/sbin/cupsd")};
  EXPECT_EQ(groupOf(412), "pid:412");
}

TEST_F(SamplerGrouping, AcceptsPidTwoAsAncestor) {
  machine_.processes = {process(2, 0, "/opt/A.app/a"), process(412, 2, "/usr/sbin/cupsd")};
  EXPECT_EQ(groupOf(412), "/opt/A.app");
}

TEST_F(SamplerGrouping, StopsAtParentPidsBelowOne) {
  for (const std::int32_t parent : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    machine_.processes = {process(412, parent, "/usr/sbin/cupsd")};
    EXPECT_EQ(groupOf(412), "pid:412") << parent;
  }
}

TEST_F(SamplerGrouping, StopsAtAParentThatIsNotListed) {
  machine_.processes = {process(412, 400, "/usr/sbin/cupsd")};
  EXPECT_EQ(groupOf(412), "pid:412");
}

TEST_F(SamplerGrouping, StopsAtACycleOfParents) {
  machine_.processes = {process(10, 11, "/bin/a"), process(11, 12, "/bin/b"), process(12, 10, "/bin/c"),
                        process(20, 20, "/bin/d")};
  EXPECT_EQ(groupOf(10), "pid:10");
  EXPECT_EQ(groupOf(20), "pid:20");
}

TEST_F(SamplerGrouping, IgnoresAncestorsWithoutParentPid) {
  machine_.processes = {process(10, 1, "/opt/A.app/a"), process(11, 10, "/bin/sh")};
  machine_.process(11).info.reset();
  EXPECT_EQ(groupOf(11), "pid:11");
}

TEST_F(SamplerGrouping, FindsTheApplicationOfAnAncestorWithoutUsage) {
  machine_.processes = {process(10, 1, "/opt/A.app/a"), process(11, 10, "/bin/sh"),
                        process(20, 1, "/opt/B.app/b"), process(21, 20, "/bin/sh")};
  machine_.process(10).usage.reset();
  machine_.process(20).info.reset();
  EXPECT_EQ(groupOf(11), "/opt/A.app");
  EXPECT_EQ(groupOf(10), "");
  EXPECT_EQ(groupOf(21), "/opt/B.app");
}

TEST_F(SamplerGrouping, FindsAnAncestorThatIsListedLater) {
  machine_.processes = {process(30, 40, "/bin/sh"), process(40, 1, "/opt/A.app/a")};
  EXPECT_EQ(groupOf(30), "/opt/A.app");
}

using SamplerGroupingDeathTest = SamplerGrouping;

TEST_F(SamplerGroupingDeathTest, AbortsWhenTheFootprintSumOverflows) {
  machine_.processes = {process(10, 1, "/opt/A.app/a", std::numeric_limits<std::uint64_t>::max()),
                        process(11, 1, "/opt/A.app/b", 1)};
  EXPECT_DEATH(sampler_.sample(), "");
}

TEST_F(SamplerGrouping, DoesNotAddFootprintsAcrossGroups) {
  machine_.processes = {process(10, 1, "", std::numeric_limits<std::uint64_t>::max()), process(11, 1, "", 1)};
  EXPECT_EQ(sampler_.sample().groups.size(), 2U);
}

/// Returns application roots by pid and records all calls.
class FakeApplicationRules final : public ApplicationRules {
 public:
  using Roots = std::map<std::int32_t, std::string>;
  using Calls = std::vector<std::pair<std::int32_t, std::string>>;

  FakeApplicationRules(Roots roots, Calls& calls) : roots_(std::move(roots)), calls_(calls) {}

  SharedText applicationRoot(std::int32_t pid, const std::string& path) override {
    calls_.emplace_back(pid, path);
    const auto root = roots_.find(pid);
    return root == roots_.end() ? SharedText() : SharedText(root->second);
  }

 private:
  Roots roots_;
  Calls& calls_;
};

class SamplerApplicationRules : public SamplerGrouping {
 protected:
  AppGroup onlyGroupWith(FakeApplicationRules::Roots roots) {
    SamplerPort port = samplerPortOf(machine_);
    port.applicationRules = std::make_unique<FakeApplicationRules>(std::move(roots), calls_);
    MemorySnapshot snapshot = MemorySampler(std::move(port)).sample();
    EXPECT_EQ(snapshot.groups.size(), 1U);
    return snapshot.groups.at(0);
  }

  FakeApplicationRules::Calls calls_;
};

TEST_F(SamplerApplicationRules, AreNotCalledWhenThePathContainsABundle) {
  machine_.processes = {process(10, 1, "/opt/A.app/a")};
  EXPECT_EQ(onlyGroupWith({{10, "/elsewhere"}}).id, "/opt/A.app");
  EXPECT_THAT(calls_, testing::IsEmpty());
}

TEST_F(SamplerApplicationRules, FindTheApplicationOfAProcess) {
  machine_.processes = {process(10, 1, "/usr/bin/editor"), process(11, 1, "")};
  const AppGroup group = onlyGroupWith(
      {{10, "/usr/share/applications/editor.desktop"}, {11, "/usr/share/applications/editor.desktop"}});
  EXPECT_EQ(group.id, "/usr/share/applications/editor.desktop");
  EXPECT_EQ(group.bundlePath, group.id);
  EXPECT_EQ(group.name, "editor");
  EXPECT_THAT(calls_, UnorderedElementsAre(std::pair(10, "/usr/bin/editor"), std::pair(11, "")));
}

TEST_F(SamplerApplicationRules, FindTheApplicationOfAnAncestor) {
  machine_.processes = {process(10, 1, ""), process(11, 10, "/bin/sh")};
  EXPECT_EQ(onlyGroupWith({{10, "/x/y.desktop"}}).id, "/x/y.desktop");
  EXPECT_THAT(calls_, UnorderedElementsAre(std::pair(10, ""), std::pair(11, "/bin/sh")))
      << "one call per process";
}

TEST_F(SamplerApplicationRules, AreCalledOncePerProcessInACycleOfParents) {
  machine_.processes = {process(10, 11, "/bin/a"), process(11, 12, "/bin/b"), process(12, 11, "/bin/c")};
  machine_.process(11).usage.reset();
  machine_.process(12).usage.reset();
  EXPECT_EQ(onlyGroupWith({}).id, "pid:10");
  EXPECT_THAT(calls_, ElementsAre(std::pair(10, "/bin/a"), std::pair(11, "/bin/b"), std::pair(12, "/bin/c")));
}

}  // namespace
}  // namespace tarn
