// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include <limits>
#include <thread>

#include "platform/macos/readers/fake_kernel.hpp"
#include "platform/macos/readers/kernel_readers.hpp"

namespace tarn::macos {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacProcScanTest : public ::testing::Test {
 protected:
  MacProcScan scan() const { return MacProcScan(kernel_.functions()); }

  FakeKernel kernel_;
};

TEST_F(MacProcScanTest, ListsAllPidsInTheKernelsOrder) {
  kernel_.pids = {300, 1, 77};
  EXPECT_THAT(scan().allPIDs(), ElementsAre(300, 1, 77));
}

TEST_F(MacProcScanTest, AllocatesTheReportedSizeAndSixteenSpareSlots) {
  kernel_.pids = {1, 2, 3};
  scan().allPIDs();
  EXPECT_THAT(kernel_.calls, ElementsAre("list 1 0 0", "list 1 0 " + std::to_string((3 + 16) * 4)));
}

TEST_F(MacProcScanTest, ListsProcessesThatStartedBetweenTheTwoCalls) {
  for (std::int32_t pid = 1; pid <= 30; ++pid) kernel_.pids.push_back(pid);
  kernel_.listSize = 10 * 4;
  EXPECT_EQ(scan().allPIDs().size(), 10U + 16U);
}

TEST_F(MacProcScanTest, MakesNoSecondCallWhenTheSizeIsNotPositive) {
  for (const int size : {0, -1}) {
    kernel_.calls.clear();
    kernel_.pids = {1, 2};
    kernel_.listSize = size;
    EXPECT_THAT(scan().allPIDs(), IsEmpty());
    EXPECT_THAT(kernel_.calls, ElementsAre("list 1 0 0"));
  }
}

TEST_F(MacProcScanTest, IsEmptyWhenTheSecondCallReturnsZero) {
  kernel_.listSize = 8;
  EXPECT_THAT(scan().allPIDs(), IsEmpty());
}

TEST_F(MacProcScanTest, ClampsAListLongerThanItsBuffer) {
  kernel_.pids = {1};
  kernel_.listFilled = 1 << 20;
  EXPECT_THAT(scan().allPIDs(), IsEmpty());
}

TEST_F(MacProcScanTest, DropsPidZeroAndNegativePids) {
  kernel_.pids = {0, 1, 0, -5, 2};
  EXPECT_THAT(scan().allPIDs(), ElementsAre(1, 2));
}

TEST_F(MacProcScanTest, ReadsParentOwnerAndStart) {
  kernel_.process = ProcessRecord{.pid = 40, .ppid = 1, .uid = 501, .startSeconds = 1'700'000'000};
  EXPECT_EQ(scan().bsdInfo(40), (BsdInfo{.ppid = 1, .uid = 501, .startSec = 1'700'000'000}));
  EXPECT_THAT(kernel_.calls, ElementsAre("info 40 3 0 136"));
}

TEST_F(MacProcScanTest, HasNoInfoUnlessTheRecordIsComplete) {
  EXPECT_EQ(scan().bsdInfo(40), std::nullopt);
  kernel_.process = ProcessRecord{};
  for (const int size : {-1, 0, 1, 135, 137}) {
    kernel_.processSize = size;
    EXPECT_EQ(scan().bsdInfo(40), std::nullopt) << size;
  }
}

TEST_F(MacProcScanTest, AcceptsTheLargestParentPid) {
  constexpr auto largest = std::numeric_limits<std::int32_t>::max();
  kernel_.process = ProcessRecord{.ppid = largest};
  EXPECT_EQ(scan().bsdInfo(40)->ppid, largest);
}

TEST_F(MacProcScanTest, AbortsForAParentPidOutOfRange) {
  kernel_.process = ProcessRecord{.ppid = std::uint32_t{1} << 31};
  EXPECT_DEATH(scan().bsdInfo(40), "");
}

TEST_F(MacProcScanTest, ReadsThePathUpToTheNullCharacter) {
  kernel_.path = std::string("/Applications/A.app/Contents/MacOS/A\0rest", 41);
  EXPECT_EQ(scan().path(40), "/Applications/A.app/Contents/MacOS/A");
  EXPECT_THAT(kernel_.calls, ElementsAre("path 40 4096"));
}

TEST_F(MacProcScanTest, AcceptsAPathWithoutANullCharacter) {
  kernel_.path = std::string(5000, 'a');
  EXPECT_EQ(scan().path(40), std::string(4096, 'a'));
}

TEST_F(MacProcScanTest, HasAnEmptyPathWhenItCannotBeRead) {
  kernel_.path = "left over";
  for (const int length : {0, -1}) {
    kernel_.pathLength = length;
    EXPECT_EQ(scan().path(40), "");
  }
}

TEST_F(MacProcScanTest, ReadsFootprintAndCpuTimeInNanoseconds) {
  kernel_.usage = UsageRecord{.userTime = 24, .systemTime = 6, .physicalFootprint = 4096};
  MacProcScan scan(kernel_.functions());
  EXPECT_EQ(scan.usage(40), (ProcessUsage{.footprint = 4096, .cpuTime = 30 * 125 / 3}));
  EXPECT_EQ(scan.footprint(40), 4096U);
  EXPECT_THAT(kernel_.calls, ElementsAre("usage 40 6", "timebase", "usage 40 6"));
}

TEST_F(MacProcScanTest, TruncatesFractionsOfANanosecond) {
  kernel_.timebase = {1, 3};
  kernel_.usage = UsageRecord{.userTime = 4, .systemTime = 4};
  EXPECT_EQ(scan().usage(40)->cpuTime, 2U);
}

TEST_F(MacProcScanTest, HasNoUsageAndReadsNoTimebaseWhenTheCallFails) {
  EXPECT_EQ(scan().usage(40), std::nullopt);
  EXPECT_EQ(scan().footprint(40), std::nullopt);
  EXPECT_THAT(kernel_.calls, ElementsAre("usage 40 6", "usage 40 6"));
}

TEST_F(MacProcScanTest, LetsCpuTimeWrapAround) {
  constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
  kernel_.timebase = {1, 1};
  kernel_.usage = UsageRecord{.userTime = largest, .systemTime = 11};
  EXPECT_EQ(scan().usage(40)->cpuTime, 10U) << "the sum";
  kernel_.timebase = {4, 1};
  kernel_.usage = UsageRecord{.userTime = (std::uint64_t{1} << 62) + 3};
  EXPECT_EQ(scan().usage(40)->cpuTime, 12U) << "the product";
}

TEST_F(MacProcScanTest, AbortsForATimebaseWithoutADenominator) {
  kernel_.timebase = {1, 0};
  kernel_.usage = UsageRecord{};
  EXPECT_DEATH(scan().usage(40), "");
}

TEST_F(MacProcScanTest, ReadsTheTimebaseOnceOnConcurrentCalls) {
  kernel_.usage = UsageRecord{.userTime = 3};
  KernelFunctions functions = kernel_.functions();
  static std::atomic<int> reads;
  reads = 0;
  functions.timebaseInfo = [](Timebase* timebase) {
    *timebase = {125, 3};
    return ++reads;
  };
  functions.pidUsage = [](int, int, void* record) {
    static_cast<UsageRecord*>(record)->userTime = 3;
    return 0;
  };
  MacProcScan scan(functions);
  constexpr int count = 4;
  std::vector<std::thread> threads;
  threads.reserve(count);
  for (int i = 0; i < count; ++i) threads.emplace_back([&scan] { EXPECT_EQ(scan.usage(1)->cpuTime, 125U); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(reads, 1);
}

TEST_F(MacProcScanTest, HasNoProcessNames) {
  EXPECT_EQ(scan().processName(40), "");
}

}  // namespace
}  // namespace tarn::macos
