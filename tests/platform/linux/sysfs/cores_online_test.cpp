// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <sched.h>
#include <unistd.h>

#include "platform/linux/procfs/text_scan.hpp"
#include "platform/linux/sysfs/linux_extras_port.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

TEST(ProcessorList, CountsRangesAndSingleNumbers) {
  EXPECT_EQ(countCpuList("0\n"), 1);
  EXPECT_EQ(countCpuList("0-3,5\n"), 5);
  EXPECT_EQ(countCpuList("0-1,4-7,9,11-11"), 8);
  EXPECT_EQ(countCpuList("0-1023\n"), 1024);
}

TEST(ProcessorList, RejectsMalformedAndHugeLists) {
  for (const char* text :
       {"", "\n", "x", "0-", "-3", "3-1", "0,", ",0", "0 1", "0-4294967295", "0-99999999"}) {
    EXPECT_FALSE(countCpuList(text)) << text;
  }
}

TEST(CoresOnline, CountsTheListInSysfs) {
  const TemporaryTree tree;
  tree.write("sys/devices/system/cpu/online", "0-3,5\n");
  EXPECT_EQ(countCoresOnline(tree.roots()), 5);
}

TEST(CoresOnline, FallsBackToSysconfWithoutList) {
  const TemporaryTree tree;
  EXPECT_EQ(countCoresOnline(tree.roots()), ::sysconf(_SC_NPROCESSORS_ONLN));
}

TEST(CoresOnline, DoesNotDependOnCPUAffinity) {
  cpu_set_t allowed;
  ASSERT_EQ(::sched_getaffinity(0, sizeof allowed, &allowed), 0);
  const int coresBefore = countCoresOnline(LinuxRoots{});
  cpu_set_t oneProcessor;
  CPU_ZERO(&oneProcessor);
  for (std::size_t processor = 0; CPU_COUNT(&oneProcessor) == 0; ++processor) {
    if (CPU_ISSET(processor, &allowed)) CPU_SET(processor, &oneProcessor);
  }
  ASSERT_EQ(::sched_setaffinity(0, sizeof oneProcessor, &oneProcessor), 0);
  EXPECT_EQ(countCoresOnline(LinuxRoots{}), coresBefore);
  ASSERT_EQ(::sched_setaffinity(0, sizeof allowed, &allowed), 0);
  EXPECT_GE(coresBefore, CPU_COUNT(&allowed));
}

}  // namespace
}  // namespace tarn
