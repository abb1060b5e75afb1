// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>

#include "extras/ports.hpp"
#include "platform/linux/procfs/linux_roots.hpp"
#include "platform/linux/sysfs/volume_name.hpp"

namespace tarn {

/// The volume that is mounted as the root.
class RootVolume {
 public:
  explicit RootVolume(LinuxRoots roots);

  /// Its capacity, the space that an ordinary user may still fill, and its label; a volume without a label
  /// bears the name of the operating system. Nothing when the volume cannot be asked.
  std::optional<VolumeValues> values();

 private:
  std::optional<std::string> name();
  std::optional<std::string> label();

  LinuxRoots roots_;
  std::optional<DeviceNumber> device_;  ///< whose record was looked for last
  std::optional<std::string> record_;   ///< absent where there is none
  /// The operating system's name, once it was looked for.
  std::optional<std::optional<std::string>> systemName_;
};

}  // namespace tarn
