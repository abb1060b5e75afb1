// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Sweeps over the files of a process table. The plain reader and the cache must return the same values.

#include "platform/linux/procfs/procfs_reader.hpp"

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <string>

#include "platform/linux/procfs/sleeping_process_cache.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr std::uint64_t bootTime = 1'700'000'000;

std::uint64_t systemConstant(int name) {
  return static_cast<std::uint64_t>(::sysconf(name));
}
const std::uint64_t pageSize = systemConstant(_SC_PAGESIZE);
const std::uint64_t ticksPerSecond = systemConstant(_SC_CLK_TCK);

std::optional<std::uint64_t> noClock(std::int32_t /*pid*/) {
  return std::nullopt;
}

enum class ScanKind { plainReader, cache };

std::unique_ptr<ProcScan> makeScan(ScanKind kind, ProcfsReader reader) {
  if (kind == ScanKind::plainReader) return std::make_unique<ProcfsReader>(std::move(reader));
  return std::make_unique<SleepingProcessCache>(std::move(reader));
}

class ProcScanTest : public testing::TestWithParam<ScanKind> {
 protected:
  ProcScanTest() {
    tree_.write("proc/stat", "cpu  1 2 3 4\nbtime " + std::to_string(bootTime) + "\nprocesses 5\n");
    tree_.write("proc/swaps", noSwap);
  }

  /// A scan that has begun its first sweep.
  std::unique_ptr<ProcScan> sweep(ProcessClock clock = noClock) const {
    auto processes = makeScan(GetParam(), ProcfsReader(tree_.roots(), std::move(clock)));
    processes->allPIDs();
    return processes;
  }

  static constexpr std::string_view noSwap = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n";
  static constexpr std::string_view usedSwap =
      "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n/dev/zram0 partition 8388604 4 100\n";
  TemporaryTree tree_;
};

std::string nameOf(const testing::TestParamInfo<ScanKind>& kind) {
  return kind.param == ScanKind::plainReader ? "PlainReader" : "Cache";
}

INSTANTIATE_TEST_SUITE_P(Both, ProcScanTest, testing::Values(ScanKind::plainReader, ScanKind::cache), nameOf);

TEST_P(ProcScanTest, ListsOnlyNumbersAboveZero) {
  for (const char* name : {"0", "7", "12", "self", "12x", "-3", "4294967296", "sys", "00"}) {
    std::filesystem::create_directories(tree_.at("proc/"s + name));
  }
  EXPECT_THAT(sweep()->allPIDs(), UnorderedElementsAre(7, 12));
}

TEST_P(ProcScanTest, ListsProcessesAgainInEachSweep) {
  const auto processes = sweep();
  ProcessFixture{.pid = 7}.writeTo(tree_);
  EXPECT_THAT(processes->allPIDs(), ElementsAre(7));
  ProcessFixture{.pid = 8}.writeTo(tree_);
  EXPECT_THAT(processes->allPIDs(), UnorderedElementsAre(7, 8));
  tree_.remove("proc/7");
  EXPECT_THAT(processes->allPIDs(), ElementsAre(8));
}

TEST_P(ProcScanTest, ListsNothingUntilTheTableCanBeRead) {
  tree_.remove("proc");
  const auto processes = sweep();
  EXPECT_THAT(processes->allPIDs(), IsEmpty());
  EXPECT_FALSE(processes->bsdInfo(7));
  EXPECT_FALSE(processes->usage(7));
  EXPECT_EQ(processes->path(7), "");
  EXPECT_EQ(processes->processName(7), "");
  ProcessFixture{.pid = 7}.writeTo(tree_);
  EXPECT_THAT(processes->allPIDs(), ElementsAre(7));
}

TEST_P(ProcScanTest, ReturnsParentRealOwnerAndStartInWholeSeconds) {
  ProcessFixture{.pid = 7, .ppid = "3", .startTicks = 50 * ticksPerSecond + ticksPerSecond - 1}.writeTo(
      tree_);
  EXPECT_EQ(sweep()->bsdInfo(7), (BsdInfo{3, 1000, bootTime + 50}));
}

TEST_P(ProcScanTest, KeepsStartTimesWhenTheClockIsSet) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  const auto processes = sweep();
  const auto before = processes->bsdInfo(7);
  tree_.write("proc/stat", "btime 1\n");
  ASSERT_TRUE(before);
  EXPECT_EQ(processes->bsdInfo(7), before);
  processes->allPIDs();
  EXPECT_EQ(processes->bsdInfo(7), before);
}

TEST_P(ProcScanTest, ReturnsProcessesWithoutBootTime) {
  tree_.remove("proc/stat");
  ProcessFixture{.pid = 7, .startTicks = 3 * ticksPerSecond}.writeTo(tree_);
  EXPECT_EQ(sweep()->bsdInfo(7), (BsdInfo{1, 1000, 3}));
}

TEST_P(ProcScanTest, ReadsTheOwnerAgainAfterPidReuseAndExec) {
  const auto processes = sweep();
  ProcessFixture{.pid = 7}.writeTo(tree_);
  processes->allPIDs();
  EXPECT_EQ(processes->bsdInfo(7)->uid, 1000U);
  ProcessFixture{.pid = 7, .startTicks = 6000, .owners = "1\t2\t2\t2"}.writeTo(tree_);
  processes->allPIDs();
  EXPECT_EQ(processes->bsdInfo(7)->uid, 1U);
  ProcessFixture{.pid = 7, .name = "shell", .startTicks = 6000, .owners = "3\t2\t2\t2"}.writeTo(tree_);
  processes->allPIDs();
  EXPECT_EQ(processes->bsdInfo(7)->uid, 3U);
}

TEST_P(ProcScanTest, HasNoValuesForAProcessThatExited) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  tree_.link("proc/7/exe", "/usr/bin/worker");
  const auto processes = sweep();
  ASSERT_TRUE(processes->bsdInfo(7));
  tree_.remove("proc/7");
  EXPECT_EQ(processes->path(7), "");
  processes->allPIDs();
  EXPECT_EQ(processes->path(7), "");
  EXPECT_FALSE(processes->usage(7));
  EXPECT_FALSE(processes->bsdInfo(7));
  EXPECT_EQ(processes->processName(7), "");
}

TEST_P(ProcScanTest, FootprintIsResidentWithoutShared) {
  ProcessFixture{.pid = 7, .statm = "5000 300 100 5 0 123 0\n"}.writeTo(tree_);
  EXPECT_EQ(sweep()->usage(7)->footprint, 200 * pageSize);
  EXPECT_EQ(sweep()->footprint(7), 200 * pageSize);
}

TEST_P(ProcScanTest, FootprintIsZeroIfMorePagesAreSharedThanResident) {
  ProcessFixture{.pid = 7, .statm = "5000 100 300 5 0 123 0\n"}.writeTo(tree_);
  EXPECT_EQ(sweep()->usage(7)->footprint, 0U);
}

TEST_P(ProcScanTest, FootprintIncludesSwapOnlyWhileTheMachineUsesSwap) {
  ProcessFixture{.pid = 7, .swapLine = "VmSwap:\t     120 kB\n"}.writeTo(tree_);
  const auto processes = sweep();
  EXPECT_EQ(processes->usage(7)->footprint, 200 * pageSize);
  tree_.write("proc/swaps", usedSwap);
  EXPECT_EQ(processes->usage(7)->footprint, 200 * pageSize) << "/proc/swaps is read once per sweep";
  processes->allPIDs();
  EXPECT_EQ(processes->usage(7)->footprint, 200 * pageSize + std::uint64_t{120} * 1024);
  tree_.write("proc/swaps", noSwap);
  processes->allPIDs();
  EXPECT_EQ(processes->usage(7)->footprint, 200 * pageSize);
}

TEST_P(ProcScanTest, FootprintIncludesSwapAfterAVeryLongListOfGroups) {
  std::string groups = "Groups:\t";
  for (int group = 100'000; group < 105'000; ++group) groups += std::to_string(group) + " ";
  ProcessFixture{.pid = 7, .swapLine = groups + "\nVmSwap:\t     120 kB\n"}.writeTo(tree_);
  tree_.write("proc/swaps", usedSwap);
  EXPECT_EQ(sweep()->usage(7)->footprint, 200 * pageSize + std::uint64_t{120} * 1024);
}

TEST_P(ProcScanTest, ReturnsNoUsageIfStatusIsUnreadableWhileSwapIsInUse) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  tree_.write("proc/swaps", usedSwap);
  const auto processes = sweep();
  ASSERT_TRUE(processes->usage(7));
  tree_.remove("proc/7/status");
  processes->allPIDs();
  EXPECT_FALSE(processes->usage(7));
}

TEST_P(ProcScanTest, TakesCpuTimeFromTheProcessClock) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  const std::map<std::int32_t, std::uint64_t> times{{7, 123'456'789}};
  const auto processes = sweep([&](std::int32_t pid) { return std::optional(times.at(pid)); });
  EXPECT_EQ(processes->usage(7)->cpuTime, 123'456'789U);
}

TEST_P(ProcScanTest, TakesCpuTimeFromTicksWithoutAClock) {
  ProcessFixture{.pid = 7, .userTicks = 100, .systemTicks = 50}.writeTo(tree_);
  EXPECT_EQ(sweep()->usage(7)->cpuTime, 150 * (1'000'000'000 / ticksPerSecond));
}

TEST_P(ProcScanTest, UsesNoKernelClockForAnotherPidNamespace) {
  ProcessFixture{.pid = ::getpid(), .userTicks = 0, .systemTicks = 3}.writeTo(tree_);
  tree_.link("proc/self", std::to_string(::getpid()));
  const auto processes = makeScan(GetParam(), ProcfsReader(tree_.roots()));
  processes->allPIDs();
  EXPECT_EQ(processes->usage(::getpid())->cpuTime, 3 * (1'000'000'000 / ticksPerSecond));
}

TEST_P(ProcScanTest, PathOfAReplacedExecutableHasNoDeletedMark) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  tree_.link("proc/7/exe", "/opt/browser/browser (deleted)");
  EXPECT_EQ(sweep()->path(7), "/opt/browser/browser");
  tree_.link("proc/7/exe", "/opt/browser/browser");
  EXPECT_EQ(sweep()->path(7), "/opt/browser/browser");
}

TEST_P(ProcScanTest, KernelThreadHasANameAndNoPath) {
  ProcessFixture{.pid = 2, .name = "kthreadd", .ppid = "0", .statm = "0 0 0 0 0 0 0\n", .swapLine = ""}
      .writeTo(tree_);
  const auto processes = sweep();
  EXPECT_EQ(processes->path(2), "");
  EXPECT_EQ(processes->bsdInfo(2)->ppid, 0);
  EXPECT_EQ(processes->usage(2)->footprint, 0U);
  EXPECT_EQ(processes->processName(2), "kthreadd");
}

TEST_P(ProcScanTest, KernelThreadHasItsLatestKernelName) {
  ProcessFixture worker{.pid = 9, .name = "kworker/0:1-events", .ppid = "2", .flags = 69238880};
  worker.writeTo(tree_);
  const auto processes = sweep();
  EXPECT_EQ(processes->processName(9), "kworker/0:1-events");
  worker.name = "kworker/0:1-mm_percpu_wq";
  worker.commandLine = "kworker/0:1-mm_percpu_wq-and-more";
  worker.writeTo(tree_);
  processes->allPIDs();
  EXPECT_EQ(processes->processName(9), "kworker/0:1-mm_percpu_wq") << "not completed from the command line";
}

TEST_P(ProcScanTest, NameMayHoldParenthesesAndLineEnds) {
  ProcessFixture{.pid = 7, .name = "a) b (c\n", .ppid = "9"}.writeTo(tree_);
  const auto processes = sweep();
  EXPECT_EQ(processes->bsdInfo(7)->ppid, 9);
  EXPECT_EQ(processes->processName(7), "a) b (c\n");
}

TEST_P(ProcScanTest, ZombieIsAProcessWithoutMemory) {
  const ProcessFixture fixture{.pid = 7, .statm = "0 0 0 0 0 0 0\n", .swapLine = ""};
  fixture.writeTo(tree_);
  std::string stat = fixture.stat();
  tree_.write("proc/7/stat", stat.replace(stat.find(") S"), 3, ") Z"));
  const auto processes = sweep();
  EXPECT_TRUE(processes->bsdInfo(7));
  EXPECT_EQ(processes->usage(7)->footprint, 0U);
}

TEST_P(ProcScanTest, CompletesTheNameFromTheCommandLine) {
  ProcessFixture fixture{
      .pid = 7, .name = "gnome-terminal-", .commandLine = "/usr/libexec/gnome-terminal-server\0"s};
  fixture.writeTo(tree_);
  const auto processes = sweep();
  EXPECT_EQ(processes->processName(7), "gnome-terminal-server");
  fixture.name = "other";
  fixture.commandLine = "";
  fixture.writeTo(tree_);
  processes->allPIDs();
  EXPECT_EQ(processes->processName(7), "other") << "another program in the same process";
}

TEST_P(ProcScanTest, DoesNotCompleteTheNameFromATruncatedCommandLine) {
  ProcessFixture{.pid = 7, .commandLine = "worker" + std::string(1 << 20, 'x')}.writeTo(tree_);
  EXPECT_EQ(sweep()->processName(7), "worker");
}

TEST_P(ProcScanTest, HasNoValuesForGarbage) {
  for (const std::string& garbage : {""s, "\n"s, "7 (worker) S 1"s, std::string(1 << 20, '9'), "\0\0\0"s}) {
    ProcessFixture{.pid = 7}.writeTo(tree_);
    tree_.write("proc/7/stat", garbage);
    const auto processes = sweep();
    EXPECT_FALSE(processes->bsdInfo(7));
    EXPECT_FALSE(processes->usage(7)) << "no CPU time";
    EXPECT_EQ(processes->processName(7), "");
    ProcessFixture{.pid = 7}.writeTo(tree_);
    tree_.write("proc/7/statm", garbage);
    processes->allPIDs();
    EXPECT_TRUE(processes->bsdInfo(7));
    EXPECT_FALSE(processes->usage(7));
    tree_.write("proc/7/status", garbage);
    EXPECT_FALSE(sweep()->bsdInfo(7));
  }
}

TEST_P(ProcScanTest, HasNoValuesForFiguresOutOfRange) {
  const std::string largestNumber = "18446744073709551615";
  ProcessFixture{.pid = 7, .ppid = "4294967295"}.writeTo(tree_);
  ProcessFixture{.pid = 8, .userTicks = ~std::uint64_t{0}, .systemTicks = 1}.writeTo(tree_);
  ProcessFixture{.pid = 9, .userTicks = ~std::uint64_t{0}, .systemTicks = 0}.writeTo(tree_);
  ProcessFixture{.pid = 10, .statm = largestNumber + " " + largestNumber + " 0 0 0 0 0\n"}.writeTo(tree_);
  ProcessFixture{.pid = 11, .statm = "0 1125899906842624 0 0 0 0 0\n"}.writeTo(tree_);
  const auto processes = sweep();
  EXPECT_FALSE(processes->bsdInfo(7));
  EXPECT_FALSE(processes->bsdInfo(8));
  EXPECT_FALSE(processes->usage(9));
  EXPECT_FALSE(processes->usage(10));
  EXPECT_FALSE(processes->usage(11)) << "1 PiB is implausible";
}

TEST_P(ProcScanTest, HasNoValuesForImpossiblePids) {
  const auto processes = sweep();
  for (const std::int32_t pid : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_FALSE(processes->bsdInfo(pid));
    EXPECT_FALSE(processes->usage(pid));
    EXPECT_EQ(processes->path(pid), "");
    EXPECT_EQ(processes->processName(pid), "");
  }
}

TEST_P(ProcScanTest, DoesNotBlockOnAFifoInThePlaceOfAFile) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  for (const char* file : {"stat", "statm", "status", "cmdline"}) tree_.pipe("proc/7/"s + file);
  tree_.pipe("proc/stat");
  tree_.pipe("proc/swaps");
  const auto processes = sweep();
  EXPECT_THAT(processes->allPIDs(), ElementsAre(7));
  EXPECT_FALSE(processes->bsdInfo(7));
  EXPECT_FALSE(processes->usage(7));
  EXPECT_EQ(processes->processName(7), "");
}

TEST_P(ProcScanTest, ReadsARecordedVirtualMachine) {
  const std::string root = TARN_FIXTURES "/linux/virtual-machine";
  const auto processes = makeScan(GetParam(), ProcfsReader({root + "/proc", root + "/sys"}, noClock));
  EXPECT_THAT(processes->allPIDs(), UnorderedElementsAre(2, 1947));
  EXPECT_EQ(processes->bsdInfo(2), (BsdInfo{0, 0, 1795261724}));
  EXPECT_EQ(processes->path(2), "");
  EXPECT_EQ(processes->processName(2), "kthreadd");
  EXPECT_EQ(processes->usage(2), (ProcessUsage{0, 0}));
  EXPECT_EQ(processes->bsdInfo(1947), (BsdInfo{8556, 0, 1795261724 + 174933 / ticksPerSecond}));
  EXPECT_EQ(processes->path(1947), "/usr/bin/sleep");
  EXPECT_EQ(processes->processName(1947), "sleep");
  EXPECT_EQ(processes->usage(1947), (ProcessUsage{27 * pageSize, 0}));
}

TEST(ProcfsReader, ReadsAgainAtEachCall) {
  const TemporaryTree tree;
  ProcessFixture process{.pid = 7};
  process.writeTo(tree);
  ProcfsReader reader(tree.roots(), noClock);
  ASSERT_THAT(reader.allPIDs(), ElementsAre(7));
  ASSERT_TRUE(reader.bsdInfo(7));
  process.ppid = "8";
  process.owners = "5\t5\t5\t5";
  process.statm = "5000 1000 100 5 0 123 0\n";
  process.name = "renamed";
  process.writeTo(tree);
  EXPECT_EQ(reader.bsdInfo(7)->ppid, 8);
  EXPECT_EQ(reader.bsdInfo(7)->uid, 5U);
  EXPECT_EQ(reader.usage(7)->footprint, 900 * pageSize);
  EXPECT_EQ(reader.processName(7), "renamed");
}

TEST(ProcfsReader, HasNoValuesForAProcessThatExitsBetweenTwoCalls) {
  const TemporaryTree tree;
  ProcessFixture{.pid = 7}.writeTo(tree);
  tree.link("proc/7/exe", "/usr/bin/worker");
  ProcfsReader reader(tree.roots(), noClock);
  ASSERT_THAT(reader.allPIDs(), ElementsAre(7));
  ASSERT_TRUE(reader.bsdInfo(7));
  tree.remove("proc/7");
  EXPECT_EQ(reader.path(7), "");
  EXPECT_FALSE(reader.usage(7));
  EXPECT_FALSE(reader.bsdInfo(7));
  EXPECT_EQ(reader.processName(7), "");
}

}  // namespace
}  // namespace tarn
