// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/system_memory.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

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
  EXPECT_EQ(info.compressedPool, 10240U);
  EXPECT_EQ(info.compressedContent, 11264U);
  EXPECT_EQ(info.anonymous, 12288U);
  EXPECT_EQ(info.sharedMemory, 13312U);
  EXPECT_EQ(info.reclaimableSlab, 14336U);
}

TEST(MemoryInfo, AFieldThatIsNoNumberOfKibibytesHasNoValue) {
  const MemoryInfo info = parseMemoryInfo(
      "MemTotal: lots kB\nMemFree: -1 kB\nMemAvailable: 5 MB\nBuffers:\nCached: 18446744073709551615 kB\n"
      "Mlocked 7 kB\nShmem: 8 kB\n");
  EXPECT_FALSE(info.total);
  EXPECT_FALSE(info.free);
  EXPECT_FALSE(info.available);
  EXPECT_FALSE(info.buffers);
  EXPECT_FALSE(info.cached);
  EXPECT_FALSE(info.locked);
  EXPECT_EQ(info.sharedMemory, 8192U) << "one bad line spoils no other";
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

TEST(Swaps, CompressedMemoryDevicesLieInMemory) {
  const SwapUse use = swapsOf(
      "/dev/zram0 partition 8388604 100 100\n/dev/zram12 partition 8 7 100\n/dev/sda2 partition 9 3 -2\n");
  EXPECT_EQ(use.used, 110U * 1024U);
  EXPECT_EQ(use.outsideMemory, 3U * 1024U);
}

TEST(Swaps, AFileThatIsOnlyNamedLikeSuchADeviceIsOnDisk) {
  EXPECT_EQ(swapsOf("/var/zram-swapfile file 10 5 -2\n/zram0/swap file 10 5 -2\n/var/zram file 1 1 1\n")
                .outsideMemory,
            11U * 1024U);
}

TEST(Swaps, NoLinesAndBrokenLinesAreNoUse) {
  EXPECT_EQ(parseSwaps("").used, 0U);
  EXPECT_EQ(swapsOf("").used, 0U);
  EXPECT_EQ(swapsOf("/dev/sda2\n/dev/sdb partition 5\n/dev/sdc partition 5 x 1\n").used, 0U);
  EXPECT_EQ(swapsOf("/dev/a partition 1 18014398509481983 1\n/dev/b partition 1 18014398509481983 1\n").used,
            18014398509481983U * 1024U)
      << "what would exceed 64 bits is left out";
}

TEST(CompressedDevice, MemoryIsTheThirdColumn) {
  EXPECT_EQ(parseCompressedDeviceMemory("  4096       58       12288        0  12288  0  0  0  0\n"), 12288U);
  for (const char* text : {"", "1 2", "1 2 x", "1 2 -3", "1 2 18446744073709551616"}) {
    EXPECT_FALSE(parseCompressedDeviceMemory(text)) << text;
  }
}

}  // namespace
}  // namespace tarn
