// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include "platform/macos/readers/fake_kernel.hpp"
#include "platform/macos/readers/kernel_readers.hpp"
#include "sampling/snapshot.hpp"

namespace tarn::macos {
namespace {

using testing::ElementsAre;

constexpr std::uint64_t pageSize = 16384;

class MacSystemMemoryTest : public ::testing::Test {
 protected:
  MacSystemMemoryTest() {
    kernel_.set("hw.memsize", std::uint64_t{17'179'869'184});
    kernel_.set("vm.swapusage", SwapRecord{.used = 1'048'576});
    kernel_.memory = MemoryRecord{.wiredPages = 1000, .compressorPages = 200, .externalPages = 30};
  }

  SystemMemory read() { return MacSystemMemoryReader(kernel_.functions()).read(); }

  MemoryPressure pressureAt(std::int32_t level) {
    kernel_.set("kern.memorystatus_vm_pressure_level", level);
    return memoryPressureFromReading(readPressureLevel(kernel_.functions()));
  }

  FakeKernel kernel_;
};

TEST_F(MacSystemMemoryTest, ConvertsPagesToBytes) {
  EXPECT_EQ(read(), (SystemMemory{.totalRAM = 17'179'869'184,
                                  .wired = 1000 * pageSize,
                                  .compressed = 200 * pageSize,
                                  .cachedFiles = 30 * pageSize,
                                  .swapUsed = 1'048'576}));
}

TEST_F(MacSystemMemoryTest, PassesTheSizeOfEachRecord) {
  read();
  EXPECT_THAT(kernel_.calls, ElementsAre("statistics 4 62", "hw.memsize 8", "vm.swapusage 32"));
}

TEST_F(MacSystemMemoryTest, ReportsZeroPagesWhenTheStatisticsFail) {
  kernel_.memory = std::nullopt;
  EXPECT_EQ(read(), (SystemMemory{.totalRAM = 17'179'869'184, .swapUsed = 1'048'576}));
}

TEST_F(MacSystemMemoryTest, ReadsEachFigureIndependently) {
  kernel_.values.erase("hw.memsize");
  EXPECT_EQ(read().totalRAM, 0U);
  EXPECT_EQ(read().swapUsed, 1'048'576U);
  kernel_.values.clear();
  EXPECT_EQ(read().swapUsed, 0U);
  EXPECT_EQ(read().wired, 1000 * pageSize);
  MacSystemMemoryReader reader(kernel_.functions());
  EXPECT_EQ(reader.totalRAM(), 0U);
  EXPECT_EQ(reader.swapUsed(), 0U);
}

TEST_F(MacSystemMemoryTest, IgnoresAValueOfAnotherSize) {
  kernel_.set("hw.memsize", std::uint32_t{5});
  EXPECT_EQ(read().totalRAM, 0U);
}

TEST_F(MacSystemMemoryTest, AbortsWhenBytesOverflow) {
  kernel_.pageSize = std::uint64_t{1} << 63;
  EXPECT_DEATH(read(), "");
  kernel_.memory = MemoryRecord{.compressorPages = 2};
  EXPECT_DEATH(read(), "");
  kernel_.memory = MemoryRecord{.externalPages = 2};
  EXPECT_DEATH(read(), "");
  kernel_.memory = MemoryRecord{.wiredPages = 1};
  EXPECT_EQ(read().wired, std::uint64_t{1} << 63);
}

TEST_F(MacSystemMemoryTest, ReadsThePressureLevel) {
  EXPECT_EQ(pressureAt(1), MemoryPressure::normal);
  EXPECT_EQ(pressureAt(2), MemoryPressure::warning);
  EXPECT_EQ(pressureAt(4), MemoryPressure::critical);
  EXPECT_EQ(pressureAt(3), MemoryPressure::normal);
  EXPECT_EQ(pressureAt(0), MemoryPressure::normal);
  EXPECT_EQ(kernel_.calls.front(), "kern.memorystatus_vm_pressure_level 4");
}

TEST_F(MacSystemMemoryTest, TreatsAnUnreadablePressureLevelAsNormal) {
  EXPECT_EQ(readPressureLevel(kernel_.functions()), std::nullopt);
  EXPECT_EQ(memoryPressureFromReading(std::nullopt), MemoryPressure::normal);
}

}  // namespace
}  // namespace tarn::macos
