// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Calls from MemorySampler to its port, caching of paths, and names of processes and applications.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sampling/memory_sampler.hpp"
#include "support/fake_machine.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SamplerProcesses : public ::testing::Test {
 protected:
  ProcessSample sampleOf(std::int32_t pid) {
    for (const AppGroup& group : sampler_.sample().groups) {
      for (const ProcessSample& process : group.processes) {
        if (process.pid == pid) return process;
      }
    }
    ADD_FAILURE() << "no sample of " << pid;
    return {};
  }

  FakeMachine machine_;
  MemorySampler sampler_{samplerPortOf(machine_)};
};

TEST_F(SamplerProcesses, CallsThePortInAFixedOrder) {
  machine_.processes = {{.pid = 10, .path = "/bin/a"}, {.pid = 9}};
  sampler_.sample();
  EXPECT_THAT(machine_.calls,
              ElementsAre("uptime", "allPIDs", "bsdInfo 10", "path 10", "usage 10", "bsdInfo 9", "path 9",
                          "usage 9", "processName 9", "uptime", "memory"));
}

TEST_F(SamplerProcesses, ExcludesSystemMemoryFromTheDuration) {
  machine_.timePerSweep = 0.25;
  EXPECT_DOUBLE_EQ(sampler_.sample().sweepDuration, 0.25);
}

TEST_F(SamplerProcesses, ReadsSystemMemoryInEverySweep) {
  machine_.memory = {.totalRAM = 5, .wired = 4, .compressed = 3, .cachedFiles = 2, .swapUsed = 1};
  EXPECT_EQ(sampler_.sample().system, machine_.memory);
  machine_.memory.swapUsed = 77;
  EXPECT_EQ(sampler_.sample().system, machine_.memory);
}

TEST_F(SamplerProcesses, ReturnsNoGroupsWithoutProcesses) {
  EXPECT_THAT(sampler_.sample().groups, IsEmpty());
}

TEST_F(SamplerProcesses, FillsInAllFieldsOfASample) {
  machine_.processes = {{.pid = 10,
                         .path = "/usr/bin/editor",
                         .info = BsdInfo{.ppid = 3, .uid = 1000, .startSec = 5},
                         .usage = ProcessUsage{.footprint = 4096, .cpuTime = 99}}};
  const ProcessSample expected{
      .pid = 10, .ppid = 3, .uid = 1000, .path = "/usr/bin/editor", .name = "editor", .footprint = 4096};
  EXPECT_EQ(sampleOf(10), expected);
}

TEST_F(SamplerProcesses, LeavesParentAndOwnerZeroWhenUnavailable) {
  machine_.processes = {{.pid = 10, .path = "/usr/bin/editor", .info = std::nullopt}};
  const ProcessSample sample = sampleOf(10);
  EXPECT_EQ(sample.ppid, 0);
  EXPECT_EQ(sample.uid, 0U);
  EXPECT_EQ(sample.path, "/usr/bin/editor");
}

TEST_F(SamplerProcesses, OmitsProcessesWithoutUsage) {
  machine_.processes = {{.pid = 10, .path = "/bin/a", .usage = std::nullopt}, {.pid = 11, .path = "/bin/b"}};
  const MemorySnapshot snapshot = sampler_.sample();
  ASSERT_EQ(snapshot.groups.size(), 1U);
  EXPECT_EQ(snapshot.groups[0].id, "pid:11");
}

TEST_F(SamplerProcesses, CountsAPidOnceWhenListedTwice) {
  machine_.processes = {{.pid = 10, .path = "/opt/A.app/a", .usage = ProcessUsage{.footprint = 5}},
                        {.pid = 10, .path = "/opt/A.app/a", .usage = ProcessUsage{.footprint = 5}}};
  EXPECT_EQ(sampler_.sample().attributedTotal(), 5U);
}

TEST_F(SamplerProcesses, NamesAProcessAfterItsLastPathComponent) {
  machine_.processes = {{.pid = 10, .path = "/opt/My Tool/run me.sh", .systemName = "other"}};
  EXPECT_EQ(sampleOf(10).name, "run me.sh");
}

TEST_F(SamplerProcesses, FallsBackToProcessNameThenPid) {
  machine_.processes = {{.pid = 10, .systemName = "kworker/0:1"}, {.pid = 412}};
  EXPECT_EQ(sampleOf(10).name, "kworker/0:1");
  EXPECT_EQ(sampleOf(10).path, "");
  EXPECT_EQ(sampleOf(412).name, "PID 412");
}

TEST_F(SamplerProcesses, ReadsThePathOncePerProcess) {
  machine_.processes = {{.pid = 10, .path = "/bin/a"}, {.pid = 11, .path = ""}};
  for (int sweep = 0; sweep < 3; ++sweep) sampler_.sample();
  EXPECT_EQ(machine_.callsOf("path 10"), 1);
  EXPECT_EQ(machine_.callsOf("path 11"), 1) << "an empty path is cached as well";
  EXPECT_EQ(machine_.callsOf("bsdInfo 10"), 3);
  EXPECT_EQ(machine_.callsOf("usage 10"), 3);
  EXPECT_EQ(sampleOf(10).path, "/bin/a");
}

TEST_F(SamplerProcesses, ReadsThePathAgainWhenThePidIsReused) {
  machine_.processes = {{.pid = 10, .path = "/bin/a"}};
  sampler_.sample();
  machine_.process(10).path = "/bin/b";
  EXPECT_EQ(sampleOf(10).path, "/bin/a") << "same process, cached path";
  machine_.process(10).info->startSec -= 1;
  EXPECT_EQ(sampleOf(10).path, "/bin/b");
  EXPECT_EQ(sampleOf(10).path, "/bin/b");
  EXPECT_EQ(machine_.callsOf("path 10"), 2);
}

TEST_F(SamplerProcesses, ReadsThePathInEverySweepWithoutStartTime) {
  machine_.processes = {{.pid = 10, .path = "/bin/a", .info = std::nullopt}};
  sampler_.sample();
  machine_.process(10).path = "/bin/b";
  EXPECT_EQ(sampleOf(10).path, "/bin/b");
  machine_.process(10).info = BsdInfo{.startSec = 4};
  machine_.process(10).path = "/bin/c";
  EXPECT_EQ(sampleOf(10).path, "/bin/c") << "a path without start time is not cached";
}

TEST_F(SamplerProcesses, KeepsTheCachedPathWhenStartTimeIsUnavailableOnce) {
  machine_.processes = {{.pid = 10, .path = "/bin/a"}};
  sampler_.sample();
  const auto info = std::exchange(machine_.process(10).info, std::nullopt);
  sampler_.sample();
  machine_.process(10).info = info;
  sampler_.sample();
  EXPECT_EQ(machine_.callsOf("path 10"), 2) << "the first read, and the read without start time";
}

TEST_F(SamplerProcesses, PrunesPathsWhenFewerProcessesExistThanAreCached) {
  machine_.processes = {{.pid = 10}, {.pid = 99, .path = "/bin/a"}};
  sampler_.sample();
  machine_.end(99);
  sampler_.sample();
  machine_.processes.push_back({.pid = 99, .path = "/bin/b"});
  EXPECT_EQ(sampleOf(99).path, "/bin/b");
  EXPECT_EQ(machine_.callsOf("path 10"), 1) << "the path of a live process stays cached";
}

TEST_F(SamplerProcesses, KeepsPathsWhenAsManyProcessesExistAsAreCached) {
  machine_.processes = {{.pid = 10}, {.pid = 99, .path = "/bin/a"}};
  sampler_.sample();
  machine_.end(99);
  machine_.processes.push_back(
      {.pid = 11, .info = std::nullopt});  // exists, but its path is not cached without start time
  sampler_.sample();
  machine_.processes.push_back({.pid = 99, .path = "/bin/b"});
  EXPECT_EQ(sampleOf(99).path, "/bin/a");
}

TEST_F(SamplerProcesses, KeepsTheCachedPathWithoutUsage) {
  machine_.processes = {{.pid = 10, .path = "/bin/a", .usage = std::nullopt}, {.pid = 11}};
  sampler_.sample();
  sampler_.sample();
  EXPECT_EQ(machine_.callsOf("path 10"), 1);
}

class SamplerDisplayName : public SamplerProcesses {
 protected:
  std::string nameWith(InformationDictionary information) {
    machine_.bundles["/Applications/Editor.app"] = std::move(information);
    return MemorySampler(samplerPortOf(machine_)).displayName("/Applications/Editor.app");
  }
};

TEST_F(SamplerDisplayName, IsCFBundleDisplayName) {
  EXPECT_EQ(nameWith({{"CFBundleDisplayName", "Text Editor"}, {"CFBundleName", "Ed"}}), "Text Editor");
}

TEST_F(SamplerDisplayName, FallsBackToCFBundleName) {
  EXPECT_EQ(nameWith({{"CFBundleName", "Ed"}}), "Ed");
  EXPECT_EQ(nameWith({{"CFBundleDisplayName", ""}, {"CFBundleName", "Ed"}}), "Ed");
}

TEST_F(SamplerDisplayName, FallsBackToTheDirectoryName) {
  EXPECT_EQ(nameWith({}), "Editor");
  EXPECT_EQ(nameWith({{"CFBundleDisplayName", ""}, {"CFBundleName", ""}}), "Editor");
  EXPECT_EQ(nameWith({{"CFBundleIdentifier", "org.example"}}), "Editor");
}

TEST_F(SamplerDisplayName, IsTheDirectoryNameOnPlatformsWithoutBundles) {
  SamplerPort port = samplerPortOf(machine_);
  port.bundleInformation = nullptr;
  EXPECT_EQ(MemorySampler(std::move(port)).displayName("/opt/My.Clock.app"), "My.Clock");
}

TEST_F(SamplerDisplayName, IsReadOncePerApplication) {
  machine_.bundles["/opt/A.app"] = {{"CFBundleName", "First"}};
  machine_.processes = {{.pid = 10, .path = "/opt/A.app/a"}, {.pid = 11, .path = "/opt/A.app/b"}};
  sampler_.sample();
  machine_.processes.clear();
  sampler_.sample();
  machine_.bundles["/opt/A.app"] = {{"CFBundleName", "Second"}};
  machine_.processes = {{.pid = 12, .path = "/opt/A.app/c"}};
  EXPECT_EQ(sampler_.sample().groups.at(0).name, "First");
  EXPECT_EQ(machine_.callsOf("bundle /opt/A.app"), 1);
}

TEST_F(SamplerProcesses, ReturnsTheSameBundleRootEachTime) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(sampler_.bundleRoot("/opt/A.app/a"), "/opt/A.app");
    EXPECT_EQ(sampler_.bundleRoot("/bin/sh"), std::nullopt);
    EXPECT_EQ(sampler_.bundleRoot(""), std::nullopt);
  }
}

TEST(ProcScanFootprint, IsTheFootprintOfTheUsage) {
  FakeMachine machine;
  machine.processes = {{.pid = 7, .usage = ProcessUsage{.footprint = 4096, .cpuTime = 12}}};
  EXPECT_EQ(FakeProcScan(machine).footprint(7), 4096U);
}

TEST(ProcScanFootprint, IsAbsentWithoutUsage) {
  FakeMachine machine;
  machine.processes = {{.pid = 7, .usage = std::nullopt}};
  EXPECT_EQ(FakeProcScan(machine).footprint(7), std::nullopt);
}

}  // namespace
}  // namespace tarn
