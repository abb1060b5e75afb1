// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "monitor/pressure_source.hpp"
#include "platform/linux/procfs/linux_roots.hpp"
#include "platform/linux/psi/pressure_level.hpp"
#include "platform/linux/psi/pressure_events.hpp"

namespace tarn {

/// The time, without the time that the machine slept.
using SteadyClock = std::function<std::chrono::steady_clock::time_point()>;

/// What one look at the kernel's files finds; either may be missing.
struct PressureLook {
  std::optional<MemoryStalls> stalls;
  std::optional<MemoryAvailability> availability;
};

PressureLook lookAtPressure(const LinuxRoots& roots);

/// Watches the level and tells of each change, and of each believed report of the kernel also when the level
/// stayed.
///
/// With the kernel's notifications it rests until one comes, and looks at the available memory every 15 s.
/// Where they are refused or get lost it looks every 2 s instead: at the time that tasks waited since the
/// look before, or, on a kernel that does not count it, at the available memory alone. A window in which
/// tasks waited as long as a notification would ask for counts as a report.
class PressureWatch {
 public:
  using Handler = PressureSource::Handler;

  static constexpr std::chrono::seconds restWithEvents{15};
  static constexpr std::chrono::seconds restWithout{2};

  /// `events` must outlive the watch.
  PressureWatch(LinuxRoots roots, PressureEvents& events, SteadyClock clock);

  /// Returns when the events are cancelled. The level at the start is not told.
  void run(const Handler& handler);

 private:
  struct Measurement {
    PressureLook look;
    PressureHysteresis::TimePoint time;
  };

  Measurement measure() const;

  LinuxRoots roots_;
  PressureEvents& events_;
  SteadyClock clock_;
};

/// Memory pressure by the kernel's pressure stall information. Occupies the queue from `resume` until it is
/// destroyed. Destroying it inside the handler is allowed.
class PsiPressureSource final : public PressureSource {
 public:
  explicit PsiPressureSource(const LinuxRoots& roots);
  PsiPressureSource(LinuxRoots roots, std::unique_ptr<PressureEvents> events, SteadyClock clock);
  PsiPressureSource(const PsiPressureSource&) = delete;
  PsiPressureSource& operator=(const PsiPressureSource&) = delete;
  ~PsiPressureSource() override;

  void resume(TaskQueue& queue, Handler handler) override;

 private:
  struct Run;
  std::shared_ptr<Run> run_;  // shared with the task on the queue, which may be dropped long after
};

/// The present memory pressure as a raw MemoryPressure value; nullopt when it cannot be read. Any thread.
std::optional<std::int32_t> readPressureLevel(const LinuxRoots& roots);

}  // namespace tarn
