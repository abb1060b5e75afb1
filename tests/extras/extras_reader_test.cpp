// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "extras/extras_reader.hpp"

#include <gmock/gmock.h>

#include <limits>

#include "support/fake_extras.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;

constexpr std::int64_t gigabyte = 1'000'000'000;

class ExtrasReaderTest : public ::testing::Test {
 protected:
  ExtrasReaderTest() {
    extras_.volume = VolumeValues{500 * gigabyte, 200 * gigabyte, "Data"};
    extras_.powerSources = {internalBattery(64, 100)};
    extras_.batteryController = PropertyDictionary{{"CycleCount", std::int64_t{312}}};
    extras_.temperatures = {40, 50, 0};
    extras_.uptime = 90'000.5;
    extras_.thermalState = ThermalState::fair;
    extras_.onCall = [this](const std::string& operation) { calls_.push_back(operation); };
  }

  SystemExtras read() { return ExtrasReader(extras_.port()).read(); }
  std::optional<StorageInfo> storage() { return ExtrasReader::storage(extras_.port()); }

  FakeExtras extras_;
  std::vector<std::string> calls_;
};

TEST_F(ExtrasReaderTest, ReadsAllValues) {
  EXPECT_EQ(read(),
            (SystemExtras{.storage = StorageInfo{"Data", 500'000'000'000, 200'000'000'000},
                          .battery = BatteryInfo{.percent = 64, .isCharging = false, .cycleCount = 312},
                          .temperatureCelsius = 45,
                          .uptime = 90'000.5}));
}

TEST_F(ExtrasReaderTest, ReadsUptimeLast) {
  read();
  EXPECT_THAT(calls_,
              ElementsAre("rootVolume", "powerSources", "batteryController", "temperatures", "uptime"));
}

TEST_F(ExtrasReaderTest, DoesNotCallThePortInItsConstructor) {
  const ExtrasReader reader(extras_.port());
  EXPECT_THAT(calls_, ElementsAre());
}

TEST_F(ExtrasReaderTest, ReturnsTheThermalStateOfThePort) {
  const ExtrasReader reader(extras_.port());
  EXPECT_EQ(reader.thermalState(), ThermalState::fair);
  extras_.thermalState = ThermalState::critical;
  EXPECT_EQ(reader.thermalState(), ThermalState::critical);
}

TEST_F(ExtrasReaderTest, ReadsThePortAgainEachTime) {
  const ExtrasReader reader(extras_.port());
  reader.read();
  extras_.volume->availableCapacityForImportantUsage = 1;
  extras_.powerSources.clear();
  extras_.temperatures = {70};
  extras_.uptime = 3;
  EXPECT_EQ(reader.read(), (SystemExtras{.storage = StorageInfo{"Data", 500'000'000'000, 1},
                                         .battery = std::nullopt,
                                         .temperatureCelsius = 70,
                                         .uptime = 3}));
}

TEST_F(ExtrasReaderTest, ReadsOtherValuesWithoutVolume) {
  extras_.volume = std::nullopt;
  const SystemExtras extras = read();
  EXPECT_EQ(extras.storage, std::nullopt);
  EXPECT_EQ(extras.battery->percent, 64);
  EXPECT_EQ(extras.temperatureCelsius, 45);
  EXPECT_EQ(extras.uptime, 90'000.5);
}

TEST_F(ExtrasReaderTest, HasNoBatteryWithoutPowerSources) {
  extras_.powerSources.clear();
  const SystemExtras extras = read();
  EXPECT_EQ(extras.battery, std::nullopt);
  EXPECT_TRUE(extras.storage && extras.temperatureCelsius);
}

TEST_F(ExtrasReaderTest, HasNoTemperatureWithoutPlausibleReading) {
  extras_.temperatures = {0, 128};
  EXPECT_EQ(read().temperatureCelsius, std::nullopt);
}

TEST_F(ExtrasReaderTest, HasOnlyUptimeWhenOtherValuesAreUnavailable) {
  FakeExtras extras;
  extras.uptime = 12;
  EXPECT_EQ(ExtrasReader(extras.port()).read(), (SystemExtras{.uptime = 12}));
}

TEST_F(ExtrasReaderTest, HasNoStorageWithoutBothCapacities) {
  extras_.volume->totalCapacity = std::nullopt;
  EXPECT_EQ(storage(), std::nullopt);
  extras_.volume = VolumeValues{500 * gigabyte, std::nullopt, "Data"};
  EXPECT_EQ(storage(), std::nullopt);
}

TEST_F(ExtrasReaderTest, NamesAVolumeWithoutNameMacintoshHD) {
  extras_.volume->name = std::nullopt;
  EXPECT_EQ(storage()->volumeName, "Macintosh HD");
}

TEST_F(ExtrasReaderTest, ClampsANegativeCapacityToZero) {
  constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
  extras_.volume = VolumeValues{-1, lowest, "Data"};
  EXPECT_EQ(storage(), (StorageInfo{"Data", 0, 0}));
}

TEST_F(ExtrasReaderTest, AcceptsTheLargestCapacity) {
  constexpr auto highest = std::numeric_limits<std::int64_t>::max();
  extras_.volume = VolumeValues{highest, highest, "Data"};
  EXPECT_EQ(storage()->total, static_cast<std::uint64_t>(highest));
}

}  // namespace
}  // namespace tarn
