// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>

#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {

/// Calls a function on the main thread when SIGTERM, SIGINT or SIGHUP arrives (from systemd, a session or a
/// terminal). The signals are caught, not blocked, because child processes inherit blocked signals. The
/// destructor restores the default actions. Only one object may exist at a time. Main thread.
class TerminationSignals final : public QObject {
 public:
  explicit TerminationSignals(std::function<void()> terminate);
  ~TerminationSignals() override;

  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  FileDescriptor signalled_;  ///< eventfd(2), written by the signal handler
  QSocketNotifier notifier_;
};

}  // namespace tarn
