// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/root_volume.hpp"

#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/sysfs/machine_tree.hpp"

namespace tarn {
namespace {

constexpr auto debian =
    "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian GNU/Linux\"\nID=debian\n";

TEST(RootVolume, ReportsCapacitiesOfStatvfs) {
  const auto values = RootVolume(LinuxRoots{}).values();
  struct statvfs status {};
  ASSERT_EQ(::statvfs("/", &status), 0);
  ASSERT_TRUE(values);
  EXPECT_EQ(values->totalCapacity, static_cast<std::int64_t>(status.f_blocks * status.f_frsize));
  constexpr double tolerance = 64 << 20;  // bytes; other programs may write between the two calls
  EXPECT_NEAR(static_cast<double>(values->availableCapacityForImportantUsage.value()),
              static_cast<double>(status.f_bavail * status.f_frsize), tolerance);
}

TEST(RootVolume, ReturnsNulloptWhenStatvfsFails) {
  EXPECT_EQ(RootVolume(LinuxRoots{.root = "/nowhere"}).values().has_value(), false);
}

class VolumeNameTest : public ::testing::Test {
 protected:
  std::optional<std::string> name() const { return RootVolume(tree_.roots()).values().value().name; }

  /// Writes the udev database record of a device.
  void writeRecord(const std::string& device, const std::string& text) const {
    tree_.write("run/udev/data/b" + device, text);
  }

  std::optional<std::string> label(DeviceNumber device) const {
    const auto record = udevRecordPath(tree_.roots(), device);
    return record ? parseLabel(readFile(*record)) : std::nullopt;
  }

  TemporaryTree tree_;
};

TEST_F(VolumeNameTest, IsTheFileSystemLabel) {
  tree_.write("etc/os-release", debian);
  writeRecord(
      "8:2",
      "S:disk/by-label/root\nE:ID_FS_LABEL=My_Disk\nE:ID_FS_LABEL_ENC=My\\x20Disk\nE:ID_FS_TYPE=ext4\n");
  EXPECT_EQ(label({8, 2}), "My Disk");
}

TEST_F(VolumeNameTest, FallsBackToTheSystemName) {
  tree_.write("etc/os-release", debian);
  EXPECT_EQ(name(), "Debian GNU/Linux");
}

TEST_F(VolumeNameTest, ReadsTheSystemNameFromEtcThenUsrLib) {
  tree_.write("usr/lib/os-release", "NAME=Fedora\n");
  EXPECT_EQ(name(), "Fedora");
  tree_.write("etc/os-release", "# nothing\n");
  EXPECT_EQ(name(), "Fedora");
  tree_.write("etc/os-release", "NAME=Remix\n");
  EXPECT_EQ(name(), "Remix");
}

TEST_F(VolumeNameTest, IsAbsentWithoutLabelAndSystemName) {
  EXPECT_EQ(name(), std::nullopt);
}

TEST_F(VolumeNameTest, ReportsAChangedLabel) {
  tree_.write("etc/os-release", debian);
  RootVolume volume(tree_.roots());
  writeVolumeRecord(tree_, "E:ID_FS_LABEL_ENC=one\n");
  EXPECT_EQ(volume.values()->name, "one");
  writeVolumeRecord(tree_, "E:ID_FS_LABEL_ENC=two\n");
  EXPECT_EQ(volume.values()->name, "two");
  writeVolumeRecord(tree_, "E:ID_FS_TYPE=ext4\n");
  EXPECT_EQ(volume.values()->name, "Debian GNU/Linux");
}

// A Btrfs file system has a device number with major 0. The device from which it is mounted has another
// number.
TEST_F(VolumeNameTest, UsesTheMountedDeviceWhenTheMajorNumberIsZero) {
  tree_.write("proc/self/mountinfo",
              "22 28 0:21 / /proc rw - proc proc rw\n"
              "28 1 0:25 /@ / rw,relatime shared:1 - btrfs /dev/nvme0n1p2 rw,subvol=/@\n"
              "29 28 0:25 /@home /home rw - btrfs /dev/nvme0n1p3 rw\n");
  tree_.write("dev/nvme0n1p2", "");
  tree_.write("sys/class/block/nvme0n1p2/dev", "259:2\n");
  writeRecord("259:2", "E:ID_FS_LABEL_ENC=fedora\n");
  EXPECT_EQ(label({0, 25}), "fedora");
}

TEST_F(VolumeNameTest, FollowsTheLinkOfAMappedDevice) {
  tree_.write("proc/self/mountinfo", "28 1 0:25 / / rw - btrfs /dev/mapper/luks-root rw\n");
  tree_.write("dev/dm-0", "");
  tree_.link("dev/mapper/luks-root", "../dm-0");
  tree_.write("sys/class/block/dm-0/dev", "254:0\n");
  writeRecord("254:0", "E:ID_FS_LABEL_ENC=safe\n");
  EXPECT_EQ(label({0, 25}), "safe");
}

TEST_F(VolumeNameTest, HasNoLabelWhenNoDeviceIsMounted) {
  tree_.write("proc/self/mountinfo", "28 1 0:25 / / rw - overlay overlay rw,lowerdir=/a\n");
  EXPECT_EQ(label({0, 25}), std::nullopt);
  tree_.write("proc/self/mountinfo", "28 1 0:25 / / rw - btrfs /dev/gone rw\n");
  EXPECT_EQ(label({0, 25}), std::nullopt);
}

TEST(MountInfo, ReturnsTheDeviceOfTheLastMountOnTheRoot) {
  EXPECT_EQ(parseRootSource("1 1 0:2 / / rw - rootfs rootfs rw\n28 1 8:2 / / rw - ext4 /dev/sda2 rw\n"),
            "/dev/sda2");
  EXPECT_EQ(
      parseRootSource("28 1 8:2 / / rw a:1 b:2 - ext4 /dev/sda2 rw\n1 1 0:2 / / rw - overlay overlay rw\n"),
      "");
  for (const auto* text :
       {"", "\n", "28 1 8:2 / /", "28 1 8:2 / / rw", "28 1 8:2 / / rw - ext4", "garbage"}) {
    EXPECT_EQ(parseRootSource(text), "") << text;
  }
}

TEST(UdevRecord, DecodesTheLabel) {
  EXPECT_EQ(parseLabel("E:ID_FS_LABEL_ENC=root\n"), "root");
  EXPECT_EQ(parseLabel("N:sda2\nE:ID_FS_LABEL_ENC=a\\x20b\\x2fc\\x5c\n"), "a b/c\\");
  EXPECT_EQ(parseLabel("E:ID_FS_LABEL_ENC=Gr\xc3\xb6\xc3\x9f\x65\n"), "Größe");
  EXPECT_EQ(parseLabel("E:ID_FS_LABEL_ENC=a\\x2\n"), "a\\x2");
  EXPECT_EQ(parseLabel("E:ID_FS_LABEL_ENC=a\\xzz\n"), "a\\xzz");
  EXPECT_EQ(parseLabel("E:ID_FS_LABEL_ENC=\n"), std::nullopt);
  EXPECT_EQ(parseLabel("E:ID_FS_LABEL=root\n"), std::nullopt);
  EXPECT_EQ(parseLabel(""), std::nullopt);
}

TEST(OsRelease, RemovesQuotesFromTheName) {
  EXPECT_EQ(parseSystemName(debian), "Debian GNU/Linux");
  EXPECT_EQ(parseSystemName("NAME=Fedora\n"), "Fedora");
  EXPECT_EQ(parseSystemName("NAME='Arch Linux'\n"), "Arch Linux");
  EXPECT_EQ(parseSystemName("NAME=\"A \\\"B\\\" \\$C\"\n"), "A \"B\" $C");
  EXPECT_EQ(parseSystemName("NAME='A\\B'\n"), "A\\B");
  EXPECT_EQ(parseSystemName("NAME=\"open\n"), "open");
  EXPECT_EQ(parseSystemName("NAME=Fedora  \nNAME=Remix\t\n"), "Remix") << "the last assignment is used";
  EXPECT_EQ(parseSystemName("NAME=\"\n"), std::nullopt);
  EXPECT_EQ(parseSystemName("NAME=\n"), std::nullopt);
  EXPECT_EQ(parseSystemName("PRETTY_NAME=x\n"), std::nullopt);
}

}  // namespace
}  // namespace tarn
