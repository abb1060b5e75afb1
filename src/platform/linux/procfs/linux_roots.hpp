// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tarn {

/// The directories with the system's files. Tests replace them with directories that they write.
struct LinuxRoots {
  std::string proc = "/proc";
  std::string sys = "/sys";
  std::string root;  ///< prefix of "/etc", of "/run" and of the "/" of the root volume
};

}  // namespace tarn
