// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/machine_tree.hpp"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <stdexcept>

#include "support/machine_description.hpp"

namespace tarn {

void writeMachine(const TemporaryTree& tree, const std::string& name) {
  layOutMachine(std::filesystem::path(TARN_FIXTURES "/linux/machines") / (name + ".machine"), tree.at(""));
}

void writeVolumeRecord(const TemporaryTree& tree, const std::string& text) {
  struct stat status {};
  if (::stat(tree.at("").c_str(), &status) != 0) throw std::runtime_error("the tree is gone");
  std::string number = std::to_string(major(status.st_dev)) + ':' + std::to_string(minor(status.st_dev));
  if (major(status.st_dev) == 0) {
    // The file system has no device number: write a mount table that names a device.
    number = "8:2";
    tree.write("proc/self/mountinfo", "28 1 0:25 / / rw - btrfs /dev/sda2 rw\n");
    tree.write("dev/sda2", "");
    tree.write("sys/class/block/sda2/dev", number + '\n');
  }
  tree.write("run/udev/data/b" + number, text);
}

}  // namespace tarn
