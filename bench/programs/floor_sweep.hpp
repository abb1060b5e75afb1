// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>

#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {

/// The least that a sweep can cost: opens, reads and closes `stat` and `statm` of every process and asks its
/// clock, and looks at nothing of what it gets.
class FloorSweep {
 public:
  FloorSweep();

  /// One sweep; how many processes answered.
  std::size_t run();

 private:
  bool read(const char* pid, const char* file);

  DirectoryStream directory_;
  std::array<char, 4096> buffer_{};
};

}  // namespace tarn
