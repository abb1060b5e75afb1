// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/system_memory.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

constexpr std::string_view swapTitles = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n";

SwapUse swapsOf(std::string_view lines) {
  return parseSwaps(std::string(swapTitles) + std::string(lines));
}

TEST(MemoryInfo, FieldsAreInBytes) {
  const MemoryInfo info = parseMemoryInfo(
      "MemTotal:       24684092 kB\nMemFree:   2 kB\nMemAvailable: 3 kB\nBuffers: 4 kB\nCached: 5 kB\n"
      "SwapCached: 6 kB\nActive: 99 kB\nMlocked: 7 kB\nSwapTotal: 8 kB\nSwapFree: 9 kB\nZswap: 10 kB\n"
      "Zswapped: 11 kB\nAnonPages: 12 kB\nShmem: 13 kB\nSReclaimable: 14 kB\nHugePages_Total:       0\n");
  EXPECT_EQ(info.total, std::uint64_t{24684092} * 1024);
  EXPECT_EQ(info.free, 2048U);
  EXPECT_EQ(info.available, 3072U);
  EXPECT_EQ(info.buffers, 4096U);
  EXPECT_EQ(info.cached, 5120U);
  EXPECT_EQ(info.swapCached, 6144U);
  EXPECT_EQ(info.locked, 7168U);
  EXPECT_EQ(info.swapTotal, 8192U);
  EXPECT_EQ(info.swapFree, 9216U);
  EXPECT_EQ(info.zswap, 10240U);
  EXPECT_EQ(info.zswapped, 11264U);
  EXPECT_EQ(info.anonymous, 12288U);
  EXPECT_EQ(info.sharedMemory, 13312U);
  EXPECT_EQ(info.reclaimableSlab, 14336U);
}

TEST(MemoryInfo, MalformedFieldsHaveNoValue) {
  const MemoryInfo info = parseMemoryInfo(
      "MemTotal: lots kB\nMemFree: -1 kB\nMemAvailable: 5 MB\nBuffers:\nCached: 18446744073709551615 kB\n"
      "Mlocked 7 kB\nShmem: 8 kB\n");
  EXPECT_FALSE(info.total);
  EXPECT_FALSE(info.free);
  EXPECT_FALSE(info.available);
  EXPECT_FALSE(info.buffers);
  EXPECT_FALSE(info.cached);
  EXPECT_FALSE(info.locked);
  EXPECT_EQ(info.sharedMemory, 8192U) << "other lines are read";
}

TEST(MemoryInfo, GarbageHasNoValues) {
  for (const std::string& text :
       {std::string(), std::string("\n\n"), std::string(1 << 20, 'x'), std::string(9, '\0')}) {
    EXPECT_FALSE(parseMemoryInfo(text).total);
  }
}

TEST(Swaps, AreSummed) {
  const SwapUse use = swapsOf(
      "/dev/sda2                               partition\t8388604\t\t100\t\t-2\n"
      "/swap\\040file\\040(deleted)             file\t\t8388604\t\t20\t\t-3\n");
  EXPECT_EQ(use.used, 120U * 1024U);
  EXPECT_EQ(use.outsideMemory, 120U * 1024U);
}

TEST(Swaps, ZramDevicesAreInMemory) {
  const SwapUse use = swapsOf(
      "/dev/zram0 partition 8388604 100 100\n/dev/zram12 partition 8 7 100\n/dev/sda2 partition 9 3 -2\n");
  EXPECT_EQ(use.used, 110U * 1024U);
  EXPECT_EQ(use.outsideMemory, 3U * 1024U);
}

TEST(Swaps, FilesNamedLikeZramDevicesAreOnDisk) {
  EXPECT_EQ(swapsOf("/var/zram-swapfile file 10 5 -2\n/zram0/swap file 10 5 -2\n/var/zram file 1 1 1\n")
                .outsideMemory,
            11U * 1024U);
}

TEST(Swaps, MissingAndMalformedLinesCountAsZero) {
  EXPECT_EQ(parseSwaps("").used, 0U);
  EXPECT_EQ(swapsOf("").used, 0U);
  EXPECT_EQ(swapsOf("/dev/sda2\n/dev/sdb partition 5\n/dev/sdc partition 5 x 1\n").used, 0U);
  EXPECT_EQ(swapsOf("/dev/a partition 1 18014398509481983 1\n/dev/b partition 1 18014398509481983 1\n").used,
            18014398509481983U * 1024U)
      << "an amount that would exceed 64 bits is ignored";
}

TEST(ZramMemory, IsTheThirdColumn) {
  EXPECT_EQ(parseZramMemory("  4096       58       12288        0  12288  0  0  0  0\n"), 12288U);
  for (const char* text : {"", "1 2", "1 2 x", "1 2 -3", "1 2 18446744073709551616"}) {
    EXPECT_FALSE(parseZramMemory(text)) << text;
  }
}

constexpr std::uint64_t kibibyte = 1024;

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

TEST_F(LinuxSystemMemoryReaderTest, WiredIsTheRemainder) {
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

TEST_F(LinuxSystemMemoryReaderTest, WiredIsZeroWithoutTotalOrFree) {
  tree_.write("proc/meminfo", "MemTotal: 10000 kB\nCached: 5 kB\n");
  EXPECT_EQ(read().wired, 0U);
  EXPECT_EQ(read().cachedFiles, 5 * kibibyte);
  tree_.write("proc/meminfo", "MemFree: 10000 kB\nMlocked: 50000 kB\nCached: 5 kB\n");
  EXPECT_EQ(read().wired, 0U);
}

TEST_F(LinuxSystemMemoryReaderTest, OtherMissingFieldsCountAsZero) {
  tree_.write("proc/meminfo", "MemTotal: 10000 kB\nMemFree: 4000 kB\n");
  EXPECT_EQ(read().wired, 6000 * kibibyte);
  EXPECT_EQ(read().cachedFiles, 0U);
}

TEST_F(LinuxSystemMemoryReaderTest, CachedFilesExcludeSharedMemory) {
  EXPECT_EQ(read().cachedFiles, (100 + 2000 + 300 - 200) * kibibyte);
  addMeminfo("Shmem: 90000 kB\n");
  EXPECT_EQ(read().cachedFiles, 0U);
}

TEST_F(LinuxSystemMemoryReaderTest, CompressedSumsAllZramDevices) {
  tree_.write("sys/block/zram0/mm_stat", "1 2 1000 0\n");
  tree_.write("sys/block/zram1/mm_stat", "1 2 500 0\n");
  tree_.write("sys/block/zram2/mm_stat", "garbage\n");
  tree_.write("sys/block/zramble/mm_stat", "1 2 7 0\n");
  tree_.write("sys/block/sda/mm_stat", "1 2 7 0\n");
  EXPECT_EQ(read().compressed, 1500U);
}

TEST_F(LinuxSystemMemoryReaderTest, SwapUsedExcludesZramAndZswap) {
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

TEST_F(LinuxSystemMemoryReaderTest, TotalIsTheMemoryOfOnlineBlocks) {
  tree_.write("sys/devices/system/memory/block_size_bytes", "100000\n");
  for (int block = 0; block < 16; ++block) writeBlock(block, block == 3 ? "0\n" : "1\n");
  tree_.write("sys/devices/system/memory/memoryless/online", "1\n");
  tree_.write("sys/devices/system/memory/power/online", "1\n");
  EXPECT_EQ(read().totalRAM, 15U * 0x100000U);
  EXPECT_EQ(LinuxSystemMemoryReader(tree_.roots()).totalRAM(), 15U * 0x100000U);
}

TEST_F(LinuxSystemMemoryReaderTest, CountsBlocksAgainWhenMemTotalChanged) {
  tree_.write("sys/devices/system/memory/block_size_bytes", "8000000\n");
  writeBlock(0, "1\n");
  LinuxSystemMemoryReader reader(tree_.roots());
  EXPECT_EQ(reader.totalRAM(), 0x8000000U);
  writeBlock(1, "1\n");
  EXPECT_EQ(reader.read().totalRAM, 0x8000000U);
  addMeminfo("MemTotal: 20000 kB\n");
  EXPECT_EQ(reader.read().totalRAM, 2U * 0x8000000U);
}

TEST_F(LinuxSystemMemoryReaderTest, TotalIsMemTotalWithoutBlocks) {
  EXPECT_EQ(read().totalRAM, 10000 * kibibyte);
  writeBlock(0, "1\n");
  EXPECT_EQ(read().totalRAM, 10000 * kibibyte) << "no block size";
  tree_.write("sys/devices/system/memory/block_size_bytes", "ffffffffffffffff\n");
  writeBlock(1, "1\n");
  EXPECT_EQ(read().totalRAM, 10000 * kibibyte) << "the product exceeds 64 bits";
  tree_.write("sys/devices/system/memory/block_size_bytes", "1000\n");
  EXPECT_EQ(read().totalRAM, 10000 * kibibyte) << "less than MemTotal";
}

TEST_F(LinuxSystemMemoryReaderTest, FiguresFailIndependently) {
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

TEST_F(LinuxSystemMemoryReaderTest, GarbageAndFifosReadAsZeroWithoutBlocking) {
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

TEST_F(LinuxSystemMemoryReaderTest, FiguresOutOfRangeAreZero) {
  addMeminfo("AnonPages: 18014398509481983 kB\nCached: 18014398509481983 kB\n");
  EXPECT_EQ(read().wired, 0U);
  EXPECT_EQ(read().cachedFiles, 0U);
}

TEST(LinuxSystemMemoryReader, ReadsARecordedVirtualMachine) {
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
