// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <chrono>
#include <string>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// Why a wait ended; all false after a timeout.
struct PressureWake {
  bool cancelled = false;  ///< the watching ends
  bool some = false;       ///< some tasks waited for memory, 200 ms of two seconds or more
  bool full = false;       ///< all tasks waited, 400 ms of two seconds or more
  bool lost = false;       ///< the kernel took the notifications back
};

/// The kernel's word that tasks wait for memory, and the one place where the watching thread rests.
class PressureEvents {
 public:
  virtual ~PressureEvents() = default;

  /// Asks for notifications; false when they are refused. Watching thread, once.
  virtual bool arm() = 0;

  /// Rests until an event, the timeout or the end. Watching thread.
  virtual PressureWake wait(std::chrono::milliseconds timeout) = 0;

  /// Ends the present wait and every later one. Any thread, any time.
  virtual void cancel() = 0;
};

/// Notifications of the running kernel.
class KernelPressureEvents final : public PressureEvents {
 public:
  explicit KernelPressureEvents(const LinuxRoots& roots);

  /// Refused by kernels before 6.4 to ordinary users, and where the root is no mounted process table.
  bool arm() override;
  PressureWake wait(std::chrono::milliseconds timeout) override;
  void cancel() override;

 private:
  std::string path_;
  FileDescriptor cancellation_;  // readable from the first cancel on
  FileDescriptor some_;
  FileDescriptor full_;
};

}  // namespace tarn
