// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>

#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {

/// Has the signals by which a session, a service manager or a terminal ends a program arrive as a call on the
/// main thread. They are caught rather than blocked, so that programs which Tarn starts get them as ever. One
/// at a time; signals do what they did before once it is destroyed. Main thread.
class TerminationSignals final : public QObject {
 public:
  explicit TerminationSignals(std::function<void()> end);
  ~TerminationSignals() override;

  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  FileDescriptor signalled_;
  QSocketNotifier notifier_;
};

}  // namespace tarn
