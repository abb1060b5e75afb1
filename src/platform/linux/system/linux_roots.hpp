// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tarn {

/// Where the kernel's own file systems are found. A captured tree in their place makes a test.
struct LinuxRoots {
  std::string proc = "/proc";
  std::string sys = "/sys";
};

}  // namespace tarn
