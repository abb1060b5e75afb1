// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "monitor/memory_pressure.hpp"
#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// PSI triggers: files through which the kernel reports stalls (Documentation/accounting/psi.rst, "Monitoring
/// for pressure thresholds"). `wait` is the only place where the pressure thread sleeps.
class PsiTriggers {
 public:
  /// Why a wait ended; all false after a timeout.
  struct Wake {
    bool cancelled = false;
    bool some = false;  ///< the trigger of the "some" line fired
    bool full = false;  ///< the trigger of the "full" line fired
    bool lost = false;  ///< the kernel removed the triggers
  };

  /// The triggers of /proc/pressure/memory. Kernels before 6.4 refuse them to unprivileged users.
  static std::unique_ptr<PsiTriggers> ofKernel(const LinuxRoots& roots);

  virtual ~PsiTriggers() = default;

  /// Registers the triggers; false when the kernel refuses. Pressure thread, once.
  virtual bool arm() = 0;

  /// Sleeps until a trigger fires, the timeout ends, or `cancel` is called. Pressure thread.
  virtual Wake wait(std::chrono::milliseconds timeout) = 0;

  /// Ends the current and every later wait. Any thread.
  virtual void cancel() = 0;
};

/// Time that does not include suspend.
using SteadyClock = std::function<std::chrono::steady_clock::time_point()>;

/// Watches the level until the triggers are cancelled. Calls `handler` when the level changes and at each
/// stall report, also when the level is the same as before. Does not report the level at the start.
///
/// With triggers it reads the files when one fires, and every 15 s for the available memory. Without them it
/// reads every 2 s, and reports when the totals in the PSI file grew as much as a trigger requires. Without
/// PSI, only the available memory is used. A reading whose allocation fails does not change the level.
void watchPressure(const LinuxRoots& roots, PsiTriggers& triggers, const SteadyClock& clock,
                   const PressureSource::Handler& handler);

/// Runs `watchPressure` on the queue from `resume` until the source is destroyed. The handler may destroy the
/// source.
class PsiPressureSource final : public PressureSource {
 public:
  explicit PsiPressureSource(const LinuxRoots& roots);
  PsiPressureSource(LinuxRoots roots, std::unique_ptr<PsiTriggers> triggers, SteadyClock clock);
  PsiPressureSource(const PsiPressureSource&) = delete;
  PsiPressureSource& operator=(const PsiPressureSource&) = delete;
  ~PsiPressureSource() override;

  void resume(TaskQueue& queue, Handler handler) override;

 private:
  struct Watch;
  std::shared_ptr<Watch> watch_;  ///< shared with the task on the queue, which may outlive the source
};

/// The current memory pressure as a raw MemoryPressure value; nullopt when it cannot be read. Any thread.
std::optional<std::int32_t> readPressureLevel(const LinuxRoots& roots);

}  // namespace tarn
