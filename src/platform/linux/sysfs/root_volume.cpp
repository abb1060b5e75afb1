// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/root_volume.hpp"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <utility>

#include "platform/linux/sysfs/volume_name.hpp"
#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {

namespace {

/// Bytes in `count` fragments; nothing when they exceed the number's range.
std::optional<std::int64_t> bytesIn(fsblkcnt_t count, unsigned long fragmentSize) {
  std::int64_t bytes = 0;
  if (__builtin_mul_overflow(count, fragmentSize, &bytes)) return std::nullopt;
  return bytes;
}

}  // namespace

RootVolume::RootVolume(LinuxRoots roots) : roots_(std::move(roots)) {}

std::optional<VolumeValues> RootVolume::values() {
  struct statvfs status {};
  if (::statvfs((roots_.root + "/").c_str(), &status) != 0) return std::nullopt;
  return VolumeValues{bytesIn(status.f_blocks, status.f_frsize), bytesIn(status.f_bavail, status.f_frsize),
                      name()};
}

std::optional<std::string> RootVolume::name() {
  if (auto label = this->label()) return label;
  if (!systemName_) systemName_ = systemName(roots_);
  return *systemName_;
}

std::optional<std::string> RootVolume::label() {
  struct stat status {};
  if (::stat((roots_.root + "/").c_str(), &status) != 0) return std::nullopt;
  // To find the record may take many calls; the device is the same until the root is another one.
  const DeviceNumber device{major(status.st_dev), minor(status.st_dev)};
  if (device != device_) {
    record_ = rootRecord(roots_, device);
    device_ = device;
  }
  return record_ ? parseLabel(readFile(*record_)) : std::nullopt;
}

}  // namespace tarn
