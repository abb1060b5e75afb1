// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <vector>

namespace tarn {

/// Child processes that do nothing until they end with the object, or with the thread that made it.
class IdleProcesses {
 public:
  /// Starts so many; throws when the system refuses one.
  explicit IdleProcesses(std::size_t count);
  IdleProcesses(const IdleProcesses&) = delete;
  IdleProcesses& operator=(const IdleProcesses&) = delete;
  ~IdleProcesses();

  const std::vector<pid_t>& pids() const { return pids_; }

 private:
  std::vector<pid_t> pids_;
};

}  // namespace tarn
