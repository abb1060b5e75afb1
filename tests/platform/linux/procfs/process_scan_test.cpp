// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/sleeping_process_cache.hpp"

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr std::uint64_t bootTime = 1'700'000'000;

std::uint64_t constantOf(int name) {
  return static_cast<std::uint64_t>(::sysconf(name));
}
const std::uint64_t pageSize = constantOf(_SC_PAGESIZE);
const std::uint64_t ticksPerSecond = constantOf(_SC_CLK_TCK);

std::optional<std::uint64_t> noClock(std::int32_t /*pid*/) {
  return std::nullopt;
}

class LinuxProcScanTest : public testing::Test {
 protected:
  LinuxProcScanTest() {
    tree_.write("proc/stat", "cpu  1 2 3 4\nbtime " + std::to_string(bootTime) + "\nprocesses 5\n");
    tree_.write("proc/swaps", noSwap);
  }

  LinuxProcScan scan() const { return {tree_.roots(), noClock}; }

  static constexpr std::string_view noSwap = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n";
  static constexpr std::string_view usedSwap =
      "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n/dev/zram0 partition 8388604 4 100\n";
  TemporaryTree tree_;
};

TEST_F(LinuxProcScanTest, ListsOnlyNumbersAboveZero) {
  for (const char* name : {"0", "7", "12", "self", "12x", "-3", "4294967296", "sys", "00"}) {
    std::filesystem::create_directories(tree_.at("proc/"s + name));
  }
  EXPECT_THAT(scan().allPIDs(), UnorderedElementsAre(7, 12));
}

TEST_F(LinuxProcScanTest, ListsAnewInEachSweep) {
  LinuxProcScan processes = scan();
  ProcessFixture{.pid = 7}.writeTo(tree_);
  EXPECT_THAT(processes.allPIDs(), ElementsAre(7));
  ProcessFixture{.pid = 8}.writeTo(tree_);
  EXPECT_THAT(processes.allPIDs(), UnorderedElementsAre(7, 8));
  tree_.remove("proc/7");
  EXPECT_THAT(processes.allPIDs(), ElementsAre(8));
}

TEST_F(LinuxProcScanTest, AnUnreadableTableIsEmptyUntilItCanBeRead) {
  tree_.remove("proc");
  LinuxProcScan processes = scan();
  EXPECT_THAT(processes.allPIDs(), IsEmpty());
  EXPECT_FALSE(processes.bsdInfo(7));
  EXPECT_FALSE(processes.usage(7));
  EXPECT_EQ(processes.path(7), "");
  EXPECT_EQ(processes.processName(7), "");
  ProcessFixture{.pid = 7}.writeTo(tree_);
  EXPECT_THAT(processes.allPIDs(), ElementsAre(7));
}

TEST_F(LinuxProcScanTest, TellsParentRealOwnerAndStartInWholeSeconds) {
  ProcessFixture{.pid = 7, .ppid = "3", .startTicks = 50 * ticksPerSecond + ticksPerSecond - 1}.writeTo(
      tree_);
  EXPECT_EQ(scan().bsdInfo(7), (BsdInfo{3, 1000, bootTime + 50}));
}

TEST_F(LinuxProcScanTest, AStepOfTheClockMovesNoStart) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  LinuxProcScan processes = scan();
  const auto before = processes.bsdInfo(7);
  tree_.write("proc/stat", "btime 1\n");
  ASSERT_TRUE(before);
  EXPECT_EQ(processes.bsdInfo(7), before);
}

TEST_F(LinuxProcScanTest, AProcessWithoutBootTimeIsStillTold) {
  tree_.remove("proc/stat");
  ProcessFixture{.pid = 7, .startTicks = 3 * ticksPerSecond}.writeTo(tree_);
  EXPECT_EQ(scan().bsdInfo(7), (BsdInfo{1, 1000, 3}));
}

TEST_F(LinuxProcScanTest, TheStatusOfAKnownProcessIsNotReadAgain) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  LinuxProcScan processes = scan();
  processes.allPIDs();
  ASSERT_TRUE(processes.bsdInfo(7));
  tree_.remove("proc/7/status");
  processes.allPIDs();
  ASSERT_TRUE(processes.bsdInfo(7));
  EXPECT_EQ(processes.bsdInfo(7)->uid, 1000U);
}

TEST_F(LinuxProcScanTest, AProcessWithAnotherStartOrNameHasItsOwnerReadAnew) {
  LinuxProcScan processes = scan();
  ProcessFixture{.pid = 7}.writeTo(tree_);
  EXPECT_EQ(processes.bsdInfo(7)->uid, 1000U);
  ProcessFixture{.pid = 7, .startTicks = 6000, .owners = "1\t2\t2\t2"}.writeTo(tree_);
  EXPECT_EQ(processes.bsdInfo(7)->uid, 1U);
  ProcessFixture{.pid = 7, .name = "shell", .startTicks = 6000, .owners = "3\t2\t2\t2"}.writeTo(tree_);
  EXPECT_EQ(processes.bsdInfo(7)->uid, 3U);
}

TEST_F(LinuxProcScanTest, ForgetsProcessesThatAreGone) {
  LinuxProcScan processes = scan();
  ProcessFixture{.pid = 7}.writeTo(tree_);
  ProcessFixture{.pid = 8}.writeTo(tree_);
  for (const std::int32_t pid : processes.allPIDs()) processes.bsdInfo(pid);
  EXPECT_EQ(processes.knownProcessCount(), 2U);
  tree_.remove("proc/8");
  for (const std::int32_t pid : processes.allPIDs()) processes.bsdInfo(pid);
  processes.allPIDs();
  EXPECT_EQ(processes.knownProcessCount(), 1U);
}

TEST_F(LinuxProcScanTest, AProcessThatVanishesBetweenTwoCallsGivesNoValue) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  tree_.link("proc/7/exe", "/usr/bin/worker");
  LinuxProcScan processes = scan();
  ASSERT_THAT(processes.allPIDs(), ElementsAre(7));
  ASSERT_TRUE(processes.bsdInfo(7));
  tree_.remove("proc/7");
  EXPECT_EQ(processes.path(7), "");
  EXPECT_FALSE(processes.usage(7));
  EXPECT_FALSE(processes.bsdInfo(7));
  EXPECT_EQ(processes.processName(7), "");
}

TEST_F(LinuxProcScanTest, FootprintIsResidentWithoutShared) {
  ProcessFixture{.pid = 7, .statm = "5000 300 100 5 0 123 0\n"}.writeTo(tree_);
  EXPECT_EQ(scan().usage(7)->footprint, 200 * pageSize);
  EXPECT_EQ(scan().footprint(7), 200 * pageSize);
}

TEST_F(LinuxProcScanTest, MoreSharedThanResidentPagesMakeNoFootprint) {
  ProcessFixture{.pid = 7, .statm = "5000 100 300 5 0 123 0\n"}.writeTo(tree_);
  EXPECT_EQ(scan().usage(7)->footprint, 0U);
}

TEST_F(LinuxProcScanTest, SwapCountsOnlyWhileTheMachineUsesAny) {
  ProcessFixture{.pid = 7, .swapLine = "VmSwap:\t     120 kB\n"}.writeTo(tree_);
  LinuxProcScan processes = scan();
  processes.allPIDs();
  EXPECT_EQ(processes.usage(7)->footprint, 200 * pageSize);
  tree_.write("proc/swaps", usedSwap);
  EXPECT_EQ(processes.usage(7)->footprint, 200 * pageSize) << "looked at once per sweep";
  processes.allPIDs();
  EXPECT_EQ(processes.usage(7)->footprint, 200 * pageSize + std::uint64_t{120} * 1024);
  tree_.write("proc/swaps", noSwap);
  processes.allPIDs();
  EXPECT_EQ(processes.usage(7)->footprint, 200 * pageSize);
}

TEST_F(LinuxProcScanTest, AVeryLongListOfGroupsHidesNoSwap) {
  std::string groups = "Groups:\t";
  for (int group = 100'000; group < 105'000; ++group) groups += std::to_string(group) + " ";
  ProcessFixture{.pid = 7, .swapLine = groups + "\nVmSwap:\t     120 kB\n"}.writeTo(tree_);
  tree_.write("proc/swaps", usedSwap);
  LinuxProcScan processes = scan();
  processes.allPIDs();
  EXPECT_EQ(processes.usage(7)->footprint, 200 * pageSize + std::uint64_t{120} * 1024);
}

TEST_F(LinuxProcScanTest, AnUnreadableStatusWhileSwapIsInUseIsAProcessThatIsGone) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  tree_.write("proc/swaps", usedSwap);
  LinuxProcScan processes = scan();
  processes.allPIDs();
  tree_.remove("proc/7/status");
  EXPECT_FALSE(processes.usage(7));
}

TEST_F(LinuxProcScanTest, TheClockGivesTheProcessorTime) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  const std::map<std::int32_t, std::uint64_t> times{{7, 123'456'789}};
  LinuxProcScan processes(tree_.roots(), [&](std::int32_t pid) { return std::optional(times.at(pid)); });
  EXPECT_EQ(processes.usage(7)->cpuTime, 123'456'789U);
}

TEST_F(LinuxProcScanTest, TicksGiveTheProcessorTimeWhereTheClockDoesNot) {
  ProcessFixture{.pid = 7, .userTicks = 100, .systemTicks = 50}.writeTo(tree_);
  EXPECT_EQ(scan().usage(7)->cpuTime, 150 * (1'000'000'000 / ticksPerSecond));
}

TEST_F(LinuxProcScanTest, TicksAreThoseOfTheSweep) {
  ProcessFixture{.pid = 7, .userTicks = 0, .systemTicks = 1}.writeTo(tree_);
  LinuxProcScan processes = scan();
  processes.allPIDs();
  processes.bsdInfo(7);
  ProcessFixture{.pid = 7, .userTicks = 0, .systemTicks = 2}.writeTo(tree_);
  EXPECT_EQ(processes.usage(7)->cpuTime, 1'000'000'000 / ticksPerSecond);
  processes.allPIDs();
  EXPECT_EQ(processes.usage(7)->cpuTime, 2 * (1'000'000'000 / ticksPerSecond));
}

TEST_F(LinuxProcScanTest, ATreeThatIsNotThisProcessesOwnTableIsNeverAskedByClock) {
  ProcessFixture{.pid = ::getpid(), .userTicks = 0, .systemTicks = 3}.writeTo(tree_);
  tree_.link("proc/self", std::to_string(::getpid()));
  EXPECT_EQ(LinuxProcScan(tree_.roots()).usage(::getpid())->cpuTime, 3 * (1'000'000'000 / ticksPerSecond));
}

TEST_F(LinuxProcScanTest, AnExecutableThatWasReplacedKeepsItsPath) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  tree_.link("proc/7/exe", "/opt/browser/browser (deleted)");
  EXPECT_EQ(scan().path(7), "/opt/browser/browser");
  tree_.link("proc/7/exe", "/opt/browser/browser");
  EXPECT_EQ(scan().path(7), "/opt/browser/browser");
}

TEST_F(LinuxProcScanTest, AKernelThreadHasANameAndNoPath) {
  ProcessFixture{.pid = 2, .name = "kthreadd", .ppid = "0", .statm = "0 0 0 0 0 0 0\n", .swapLine = ""}
      .writeTo(tree_);
  LinuxProcScan processes = scan();
  EXPECT_EQ(processes.path(2), "");
  EXPECT_EQ(processes.bsdInfo(2)->ppid, 0);
  EXPECT_EQ(processes.usage(2)->footprint, 0U);
  EXPECT_EQ(processes.processName(2), "kthreadd");
}

TEST_F(LinuxProcScanTest, AKernelThreadIsTheSameByAnyName) {
  ProcessFixture worker{.pid = 9, .name = "kworker/0:1-events", .ppid = "2", .flags = 69238880};
  worker.writeTo(tree_);
  LinuxProcScan processes = scan();
  processes.allPIDs();
  EXPECT_EQ(processes.bsdInfo(9)->uid, 1000U);
  EXPECT_EQ(processes.processName(9), "kworker/0:1-events");
  EXPECT_EQ(processes.programOf(9), std::nullopt) << "it runs none";
  worker.name = "kworker/0:1-mm_percpu_wq";
  worker.owners = "7\t7\t7\t7";
  worker.commandLine = "kworker/0:1-mm_percpu_wq-and-more";
  worker.writeTo(tree_);
  processes.allPIDs();
  EXPECT_EQ(processes.bsdInfo(9)->uid, 1000U) << "read once";
  EXPECT_EQ(processes.processName(9), "kworker/0:1-mm_percpu_wq") << "as the kernel calls it";
  worker.startTicks += 1;
  worker.writeTo(tree_);
  processes.allPIDs();
  EXPECT_EQ(processes.bsdInfo(9)->uid, 7U) << "another one of the same pid";
}

TEST_F(LinuxProcScanTest, ANameWithParenthesesAndLineEndsConfusesNothing) {
  ProcessFixture{.pid = 7, .name = "a) b (c\n", .ppid = "9"}.writeTo(tree_);
  LinuxProcScan processes = scan();
  EXPECT_EQ(processes.bsdInfo(7)->ppid, 9);
  EXPECT_EQ(processes.processName(7), "a) b (c\n");
}

TEST_F(LinuxProcScanTest, AZombieIsAProcessWithoutMemory) {
  ProcessFixture fixture{.pid = 7, .statm = "0 0 0 0 0 0 0\n", .swapLine = ""};
  fixture.writeTo(tree_);
  std::string stat = fixture.stat();
  tree_.write("proc/7/stat", stat.replace(stat.find(") S"), 3, ") Z"));
  LinuxProcScan processes = scan();
  EXPECT_TRUE(processes.bsdInfo(7));
  EXPECT_EQ(processes.usage(7)->footprint, 0U);
}

TEST_F(LinuxProcScanTest, TheNameIsCompletedFromTheCommandLineOncePerProcess) {
  ProcessFixture fixture{
      .pid = 7, .name = "gnome-terminal-", .commandLine = "/usr/libexec/gnome-terminal-server\0"s};
  fixture.writeTo(tree_);
  LinuxProcScan processes = scan();
  EXPECT_EQ(processes.processName(7), "gnome-terminal-server");
  tree_.remove("proc/7/cmdline");
  processes.allPIDs();
  EXPECT_EQ(processes.processName(7), "gnome-terminal-server");
  fixture.name = "other";
  fixture.commandLine = "";
  fixture.writeTo(tree_);
  processes.allPIDs();
  EXPECT_EQ(processes.processName(7), "other") << "another program in the same process";
}

TEST_F(LinuxProcScanTest, ACommandLineWithoutEndCompletesNothing) {
  ProcessFixture{.pid = 7, .commandLine = "worker" + std::string(1 << 20, 'x')}.writeTo(tree_);
  EXPECT_EQ(scan().processName(7), "worker");
}

TEST_F(LinuxProcScanTest, GarbageGivesNoValue) {
  for (const std::string& garbage : {""s, "\n"s, "7 (worker) S 1"s, std::string(1 << 20, '9'), "\0\0\0"s}) {
    ProcessFixture{.pid = 7}.writeTo(tree_);
    tree_.write("proc/7/stat", garbage);
    LinuxProcScan processes = scan();
    EXPECT_FALSE(processes.bsdInfo(7));
    EXPECT_FALSE(processes.usage(7)) << "there is no processor time to be had";
    EXPECT_EQ(processes.processName(7), "");
    ProcessFixture{.pid = 7}.writeTo(tree_);
    tree_.write("proc/7/statm", garbage);
    EXPECT_FALSE(processes.usage(7));
    tree_.write("proc/7/status", garbage);
    EXPECT_FALSE(scan().bsdInfo(7));
  }
}

TEST_F(LinuxProcScanTest, FiguresBeyondTheirRangeGiveNoValue) {
  const std::string most = "18446744073709551615";
  ProcessFixture{.pid = 7, .ppid = "4294967295"}.writeTo(tree_);
  ProcessFixture{.pid = 8, .userTicks = ~std::uint64_t{0}, .systemTicks = 1}.writeTo(tree_);
  ProcessFixture{.pid = 9, .userTicks = ~std::uint64_t{0}, .systemTicks = 0}.writeTo(tree_);
  ProcessFixture{.pid = 10, .statm = most + " " + most + " 0 0 0 0 0\n"}.writeTo(tree_);
  ProcessFixture{.pid = 11, .statm = "0 1125899906842624 0 0 0 0 0\n"}.writeTo(tree_);
  LinuxProcScan processes = scan();
  EXPECT_FALSE(processes.bsdInfo(7));
  EXPECT_FALSE(processes.bsdInfo(8));
  EXPECT_FALSE(processes.usage(9));
  EXPECT_FALSE(processes.usage(10));
  EXPECT_FALSE(processes.usage(11)) << "more than any machine holds";
}

TEST_F(LinuxProcScanTest, PidsThatCannotBeGiveNoValue) {
  LinuxProcScan processes = scan();
  for (const std::int32_t pid : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_FALSE(processes.bsdInfo(pid));
    EXPECT_FALSE(processes.usage(pid));
    EXPECT_EQ(processes.path(pid), "");
    EXPECT_EQ(processes.processName(pid), "");
  }
}

TEST_F(LinuxProcScanTest, APipeInThePlaceOfAFileIsNotWaitedFor) {
  ProcessFixture{.pid = 7}.writeTo(tree_);
  for (const char* file : {"stat", "statm", "status", "cmdline"}) tree_.pipe("proc/7/"s + file);
  tree_.pipe("proc/stat");
  tree_.pipe("proc/swaps");
  LinuxProcScan processes = scan();
  EXPECT_THAT(processes.allPIDs(), ElementsAre(7));
  EXPECT_FALSE(processes.bsdInfo(7));
  EXPECT_FALSE(processes.usage(7));
  EXPECT_EQ(processes.processName(7), "");
}

TEST(RecordedVirtualMachine, ItsProcessesAreReadAsTheyWere) {
  const std::string root = TARN_FIXTURES "/linux/virtual-machine";
  LinuxProcScan processes({root + "/proc", root + "/sys"}, noClock);
  EXPECT_THAT(processes.allPIDs(), UnorderedElementsAre(2, 1947));
  EXPECT_EQ(processes.bsdInfo(2), (BsdInfo{0, 0, 1795261724}));
  EXPECT_EQ(processes.path(2), "");
  EXPECT_EQ(processes.processName(2), "kthreadd");
  EXPECT_EQ(processes.usage(2), (ProcessUsage{0, 0}));
  EXPECT_EQ(processes.bsdInfo(1947), (BsdInfo{8556, 0, 1795261724 + 174933 / ticksPerSecond}));
  EXPECT_EQ(processes.path(1947), "/usr/bin/sleep");
  EXPECT_EQ(processes.processName(1947), "sleep");
  EXPECT_EQ(processes.usage(1947), (ProcessUsage{27 * pageSize, 0}));
}

TEST(LinuxProcScanPrograms, HaveANumberEach) {
  const TemporaryTree tree;
  tree.write("proc/stat", "btime 1000\n");
  ProcessFixture shell{.pid = 40, .name = "sh"};
  ProcessFixture other{.pid = 41, .name = "sh"};
  shell.writeTo(tree);
  other.writeTo(tree);
  LinuxProcScan scan(tree.roots(), [](std::int32_t) { return std::nullopt; });
  EXPECT_EQ(scan.programOf(40), std::nullopt) << "not met yet";
  const auto sweep = [&] {
    for (const std::int32_t pid : scan.allPIDs()) scan.bsdInfo(pid);
  };
  sweep();
  const auto first = scan.programOf(40);
  ASSERT_TRUE(first);
  EXPECT_NE(scan.programOf(41), first);
  sweep();
  EXPECT_EQ(scan.programOf(40), first);
  shell.name = "firefox";
  shell.writeTo(tree);
  sweep();
  const auto second = scan.programOf(40);
  EXPECT_NE(second, first) << "it runs another program";
  shell.startTicks += 1;
  shell.writeTo(tree);
  sweep();
  EXPECT_NE(scan.programOf(40), second) << "it is another process";
  tree.remove("proc/40");
  sweep();
  EXPECT_EQ(scan.programOf(40), std::nullopt);
}

}  // namespace
}  // namespace tarn
