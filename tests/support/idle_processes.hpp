// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <vector>

namespace tarn {

/// Child processes that sleep. They are killed by the destructor, or when the thread that created them exits.
class IdleProcesses {
 public:
  /// Starts `count` processes. Throws std::system_error when fork(2) fails.
  explicit IdleProcesses(std::size_t count);
  IdleProcesses(const IdleProcesses&) = delete;
  IdleProcesses& operator=(const IdleProcesses&) = delete;
  ~IdleProcesses();

  const std::vector<pid_t>& pids() const { return pids_; }

 private:
  std::vector<pid_t> pids_;
};

}  // namespace tarn
