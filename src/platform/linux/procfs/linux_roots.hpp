// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tarn {

/// Where the system's files are found. A captured tree in their place makes a test.
struct LinuxRoots {
  std::string proc = "/proc";
  std::string sys = "/sys";
  std::string root;  ///< what stands before "/etc" and "/run", and before "/" of the root volume
};

}  // namespace tarn
