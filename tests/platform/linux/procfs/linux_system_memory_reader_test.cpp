// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/linux_system_memory_reader.hpp"

#include <gmock/gmock.h>

#include <string>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

constexpr std::uint64_t kibibyte = 1024;
constexpr std::string_view swapTitles = "Filename Type Size Used Priority\n";

constexpr std::string_view meminfo =
    "MemTotal: 10000 kB\nMemFree: 1000 kB\nMemAvailable: 5000 kB\nBuffers: 100 kB\nCached: 2000 kB\n"
    "SwapCached: 10 kB\nAnonPages: 3000 kB\nShmem: 200 kB\nSReclaimable: 300 kB\nMlocked: 40 kB\n"
    "SwapTotal: 0 kB\nSwapFree: 0 kB\n";

class LinuxSystemMemoryReaderTest : public testing::Test {
 protected:
  LinuxSystemMemoryReaderTest() { tree_.write("proc/meminfo", meminfo); }

  SystemMemory read() const { return LinuxSystemMemoryReader(tree_.roots()).read(); }

  void addMeminfo(const std::string& lines) const {
    tree_.write("proc/meminfo", std::string(meminfo) + lines);
  }

  void writeBlock(int number, const std::string& online) const {
    tree_.write("sys/devices/system/memory/memory" + std::to_string(number) + "/online", online);
  }

  TemporaryTree tree_;
};

TEST_F(LinuxSystemMemoryReaderTest, WiredIsWhatNothingElseExplains) {
  EXPECT_EQ(read().wired, (10000 - 1000 - 100 - 2000 - 10 - 3000 - 300 + 40) * kibibyte);
}

TEST_F(LinuxSystemMemoryReaderTest, CompressedMemoryIsNotWired) {
  tree_.write("sys/block/zram0/mm_stat", "4096 58 12288 0 12288 0 0 0 0\n");
  addMeminfo("Zswap: 8 kB\n");
  EXPECT_EQ(read().compressed, 20 * kibibyte);
  EXPECT_EQ(read().wired, (3630 - 20) * kibibyte);
}

TEST_F(LinuxSystemMemoryReaderTest, WiredIsNotBelowZero) {
  addMeminfo("Cached: 20000 kB\n");
  EXPECT_EQ(read().wired, 0U);
}

TEST_F(LinuxSystemMemoryReaderTest, WithoutTotalOrFreeMemoryThereIsNoWired) {
  tree_.write("proc/meminfo", "MemTotal: 10000 kB\nCached: 5 kB\n");
  EXPECT_EQ(read().wired, 0U);
  EXPECT_EQ(read().cachedFiles, 5 * kibibyte);
  tree_.write("proc/meminfo", "MemFree: 10000 kB\nMlocked: 50000 kB\nCached: 5 kB\n");
  EXPECT_EQ(read().wired, 0U);
}

TEST_F(LinuxSystemMemoryReaderTest, OtherMissingFieldsCountAsNothing) {
  tree_.write("proc/meminfo", "MemTotal: 10000 kB\nMemFree: 4000 kB\n");
  EXPECT_EQ(read().wired, 6000 * kibibyte);
  EXPECT_EQ(read().cachedFiles, 0U);
}

TEST_F(LinuxSystemMemoryReaderTest, CachedFilesLeaveSharedMemoryOut) {
  EXPECT_EQ(read().cachedFiles, (100 + 2000 + 300 - 200) * kibibyte);
  addMeminfo("Shmem: 90000 kB\n");
  EXPECT_EQ(read().cachedFiles, 0U);
}

TEST_F(LinuxSystemMemoryReaderTest, CompressedSumsAllDevices) {
  tree_.write("sys/block/zram0/mm_stat", "1 2 1000 0\n");
  tree_.write("sys/block/zram1/mm_stat", "1 2 500 0\n");
  tree_.write("sys/block/zram2/mm_stat", "garbage\n");
  tree_.write("sys/block/zramble/mm_stat", "1 2 7 0\n");
  tree_.write("sys/block/sda/mm_stat", "1 2 7 0\n");
  EXPECT_EQ(read().compressed, 1500U);
}

TEST_F(LinuxSystemMemoryReaderTest, SwapUsedIsWhatLiesOnDisks) {
  tree_.write("proc/swaps",
              std::string(swapTitles) +
                  "/dev/zram0 partition 99 50 100\n/dev/sda2 partition 99 30 -2\n/swapfile file 99 5 -3\n");
  EXPECT_EQ(read().swapUsed, 35 * kibibyte);
  addMeminfo("Zswap: 3 kB\nZswapped: 10 kB\n");
  EXPECT_EQ(read().swapUsed, 25 * kibibyte);
  EXPECT_EQ(LinuxSystemMemoryReader(tree_.roots()).swapUsed(), 25 * kibibyte);
  addMeminfo("Zswapped: 1000 kB\n");
  EXPECT_EQ(read().swapUsed, 0U);
}

TEST_F(LinuxSystemMemoryReaderTest, TotalIsTheMemoryOfBlocksOnline) {
  tree_.write("sys/devices/system/memory/block_size_bytes", "100000\n");
  for (int block = 0; block < 16; ++block) writeBlock(block, block == 3 ? "0\n" : "1\n");
  tree_.write("sys/devices/system/memory/memoryless/online", "1\n");
  tree_.write("sys/devices/system/memory/power/online", "1\n");
  EXPECT_EQ(read().totalRAM, 15U * 0x100000U);
  EXPECT_EQ(LinuxSystemMemoryReader(tree_.roots()).totalRAM(), 15U * 0x100000U);
}

TEST_F(LinuxSystemMemoryReaderTest, BlocksAreCountedAgainWhenTheMemoryInUseChanged) {
  tree_.write("sys/devices/system/memory/block_size_bytes", "8000000\n");
  writeBlock(0, "1\n");
  LinuxSystemMemoryReader reader(tree_.roots());
  EXPECT_EQ(reader.totalRAM(), 0x8000000U);
  writeBlock(1, "1\n");
  EXPECT_EQ(reader.read().totalRAM, 0x8000000U);
  addMeminfo("MemTotal: 20000 kB\n");
  EXPECT_EQ(reader.read().totalRAM, 2U * 0x8000000U);
}

TEST_F(LinuxSystemMemoryReaderTest, WithoutBlocksTotalIsTheMemoryInUse) {
  EXPECT_EQ(read().totalRAM, 10000 * kibibyte);
  writeBlock(0, "1\n");
  EXPECT_EQ(read().totalRAM, 10000 * kibibyte) << "no block size";
  tree_.write("sys/devices/system/memory/block_size_bytes", "ffffffffffffffff\n");
  writeBlock(1, "1\n");
  EXPECT_EQ(read().totalRAM, 10000 * kibibyte) << "more than 64 bits hold";
  tree_.write("sys/devices/system/memory/block_size_bytes", "1000\n");
  EXPECT_EQ(read().totalRAM, 10000 * kibibyte) << "less than is in use";
}

TEST_F(LinuxSystemMemoryReaderTest, EachFigureFailsForItself) {
  tree_.write("proc/swaps", std::string(swapTitles) + "/dev/sda2 partition 99 30 -2\n");
  tree_.write("sys/devices/system/memory/block_size_bytes", "100000\n");
  writeBlock(0, "1\n");
  tree_.write("sys/block/zram0/mm_stat", "1 2 1000 0\n");
  tree_.remove("proc/meminfo");
  EXPECT_EQ(read(), (SystemMemory{0x100000, 0, 1000, 0, 30 * kibibyte}));
  tree_.remove("proc/swaps");
  tree_.remove("sys");
  EXPECT_EQ(read(), SystemMemory{});
}

TEST_F(LinuxSystemMemoryReaderTest, GarbageAndPipesAreZeroAndNotWaitedFor) {
  for (const char* file : {"proc/meminfo", "proc/swaps", "sys/devices/system/memory/block_size_bytes",
                           "sys/block/zram0/mm_stat"}) {
    tree_.write(file, std::string(1 << 20, '8'));
  }
  EXPECT_EQ(read(), SystemMemory{});
  for (const char* file : {"proc/meminfo", "proc/swaps", "sys/devices/system/memory/block_size_bytes",
                           "sys/block/zram0/mm_stat"}) {
    tree_.pipe(file);
  }
  EXPECT_EQ(read(), SystemMemory{});
}

TEST_F(LinuxSystemMemoryReaderTest, FiguresBeyondTheirRangeAreZero) {
  addMeminfo("AnonPages: 18014398509481983 kB\nCached: 18014398509481983 kB\n");
  EXPECT_EQ(read().wired, 0U);
  EXPECT_EQ(read().cachedFiles, 0U);
}

TEST(RecordedVirtualMachine, ItsMemoryIsReadAsItWas) {
  const std::string root = TARN_FIXTURES "/linux/virtual-machine";
  const SystemMemory memory = LinuxSystemMemoryReader({root + "/proc", root + "/sys"}).read();
  EXPECT_EQ(memory.totalRAM, 24684092 * kibibyte);
  EXPECT_EQ(memory.wired, 82880 * kibibyte);
  EXPECT_EQ(memory.compressed, 0U);
  EXPECT_EQ(memory.cachedFiles, 647136 * kibibyte);
  EXPECT_EQ(memory.swapUsed, 0U);
}

}  // namespace
}  // namespace tarn
