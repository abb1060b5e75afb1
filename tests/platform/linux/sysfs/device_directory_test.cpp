// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/device_directory.hpp"

#include <gmock/gmock.h>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DeviceDirectoryTest : public ::testing::Test {
 protected:
  DeviceDirectory device() const { return DeviceDirectory(tree_.at("sys/device").string()); }
  DeviceClass deviceClass() const { return DeviceClass(tree_.at("sys/class/hwmon").string()); }

  TemporaryTree tree_;
};

TEST_F(DeviceDirectoryTest, ReadsTheFirstLineWithoutTrailingWhitespace) {
  tree_.write("sys/device/name", "coretemp \t\nmore\n");
  tree_.write("sys/device/empty", "");
  EXPECT_EQ(device().text("name"), "coretemp");
  EXPECT_EQ(device().text("empty"), "");
  EXPECT_EQ(device().text("absent"), "");
}

TEST_F(DeviceDirectoryTest, ReadsOnlyIntegersAsNumbers) {
  tree_.write("sys/device/low", "-62000\n");
  tree_.write("sys/device/word", "12 V\n");
  tree_.write("sys/device/fraction", "1.5\n");
  tree_.write("sys/device/large", "9223372036854775808\n");
  EXPECT_EQ(device().number("low"), -62000);
  EXPECT_EQ(device().celsius("low"), -62);
  EXPECT_EQ(device().number("word"), std::nullopt);
  EXPECT_EQ(device().number("fraction"), std::nullopt);
  EXPECT_EQ(device().number("large"), std::nullopt);
  EXPECT_EQ(device().celsius("large"), std::nullopt);
}

TEST_F(DeviceDirectoryTest, OpensOnlyRegularFiles) {
  tree_.pipe("sys/device/pipe");
  tree_.link("sys/device/link", "/dev/zero");
  tree_.write("sys/device/folder/file", "1\n");
  tree_.write("sys/device/number", "1\n");
  EXPECT_THAT(device().files(), ElementsAre("number"));
  EXPECT_EQ(device().text("pipe"), "");
  EXPECT_EQ(device().text("link"), "");
  EXPECT_EQ(device().text("folder"), "");
}

TEST_F(DeviceDirectoryTest, DoesNotBlockWhenAPipeReplacedTheFile) {
  tree_.write("sys/device/number", "1\n");
  const DeviceDirectory listed = device();
  tree_.pipe("sys/device/number");
  EXPECT_EQ(listed.number("number"), std::nullopt);
}

TEST_F(DeviceDirectoryTest, ReturnsNulloptForAFileRemovedAfterListing) {
  tree_.write("sys/device/number", "1\n");
  const DeviceDirectory listed = device();
  tree_.remove("sys/device");
  EXPECT_EQ(listed.number("number"), std::nullopt);
}

TEST_F(DeviceDirectoryTest, ReadsAtMostOnePage) {
  tree_.write("sys/device/long", std::string(1 << 20, '7'));
  EXPECT_EQ(device().text("long").size(), 4096U);
  EXPECT_EQ(device().number("long"), std::nullopt);
}

TEST_F(DeviceDirectoryTest, IsEmptyWithoutDirectory) {
  EXPECT_THAT(device().files(), IsEmpty());
  EXPECT_THAT(listDirectory(tree_.at("nowhere").string()), IsEmpty());
  tree_.write("sys/class/hwmon", "not a directory");
  EXPECT_THAT(listDirectory(tree_.at("sys/class/hwmon").string()), IsEmpty());
}

TEST_F(DeviceDirectoryTest, ReportsAddedAndRemovedDevices) {
  DeviceClass chips = deviceClass();
  EXPECT_TRUE(chips.hasChanged()) << "true at the first call, also without devices";
  chips.markComplete();
  EXPECT_FALSE(chips.hasChanged());
  EXPECT_THAT(chips.devices(), IsEmpty());
  tree_.write("sys/class/hwmon/hwmon0/name", "one\n");
  EXPECT_TRUE(chips.hasChanged());
  EXPECT_TRUE(chips.hasChanged()) << "true until markComplete is called";
  chips.markComplete();
  EXPECT_FALSE(chips.hasChanged());
  ASSERT_EQ(chips.devices().size(), 1U);
  EXPECT_EQ(chips.devices()[0].text("name"), "one");
  tree_.remove("sys/class/hwmon/hwmon0");
  EXPECT_TRUE(chips.hasChanged());
  EXPECT_THAT(chips.devices(), IsEmpty());
}

TEST_F(DeviceDirectoryTest, ReportsADeviceReplacedUnderTheSameName) {
  tree_.write("sys/class/hwmon/hwmon0/name", "one\n");
  DeviceClass chips = deviceClass();
  EXPECT_TRUE(chips.hasChanged());
  chips.markComplete();
  std::filesystem::rename(tree_.at("sys/class/hwmon/hwmon0"), tree_.at("sys/gone"));
  tree_.write("sys/class/hwmon/hwmon0/name", "two\n");
  EXPECT_TRUE(chips.hasChanged());
}

TEST_F(DeviceDirectoryTest, FollowsLinksToDevices) {
  tree_.write("sys/devices/platform/chip/name", "one\n");
  tree_.link("sys/class/hwmon/hwmon0", "../../devices/platform/chip");
  DeviceClass chips = deviceClass();
  EXPECT_TRUE(chips.hasChanged());
  ASSERT_EQ(chips.devices().size(), 1U);
  EXPECT_EQ(chips.devices()[0].text("name"), "one");
}

}  // namespace
}  // namespace tarn
