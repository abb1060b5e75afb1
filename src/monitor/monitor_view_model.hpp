// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "extras/extras_reader.hpp"
#include "monitor/concurrency.hpp"
#include "monitor/memory_pressure.hpp"
#include "monitor/presentation.hpp"
#include "sampling/memory_sampler.hpp"

namespace tarn {

/// The functions and objects that the view model uses.
struct MonitorPorts {
  RunLoop& mainLoop;  ///< outlives the view model
  /// Makes a serial queue, active or inactive; `label` is the name of its thread.
  std::function<std::unique_ptr<TaskQueue>(const std::string& label)> makeQueue;
  SamplerPort sampler;
  ExtrasPort extras;
  /// Returns the current pressure level as a raw MemoryPressure value; nullopt when it cannot be read.
  std::function<std::optional<std::int32_t>()> pressureLevel;
  std::unique_ptr<PressureSource> pressureSource;
  FrontmostApplicationSource frontmostApplication;
  std::function<int()> activeProcessorCount;
};

/// Decides when a sweep runs, runs it off the main thread, and publishes its results.
///
/// Used and destroyed on the main thread. A sweep in flight holds a reference to the view model until its
/// results are published; timer and pressure events hold no reference. A sweep that runs out of memory
/// publishes no results.
class MonitorViewModel final : public QObject, public std::enable_shared_from_this<MonitorViewModel> {
  Q_OBJECT
  struct Token {};  // only `create` can call the constructor

 public:
  /// Reads the pressure level, listens for its changes, schedules the timer and requests the first sweep.
  static std::shared_ptr<MonitorViewModel> create(MonitorPorts ports);

  MonitorViewModel(Token token, MonitorPorts ports);

  // Published values. An optional one is nullopt until its first value is known.
  const std::optional<MemorySnapshot>& snapshot() const { return snapshot_; }
  MemoryPressure pressure() const { return pressure_; }
  std::optional<std::uint64_t> frontmostFootprint() const { return frontmostFootprint_; }  ///< bytes
  const std::optional<SystemExtras>& extras() const { return extras_; }
  ThermalState thermalState() const { return thermalState_; }

  // Derived from the published values at each call.
  StatusPresentation presentation() const;
  CPUPresentation cpuPresentation() const;

  /// Activates the queues that `makeQueue` made; idempotent. The first sweep costs as much as the start of
  /// the program. Inactive queues delay it, and the watch for pressure, until the caller has shown the item.
  /// They also keep the reference of the first sweep. So call this before the last other reference is
  /// released, else the view model is never destroyed.
  void startSweeping();

  /// The popover was shown: sweeps now and every 3 seconds, with extras. Includes `startSweeping`.
  void popoverOpened();

  /// The popover was hidden: sweeps every 30 seconds.
  void popoverClosed();

 Q_SIGNALS:
  /// A published value is about to change; observers read it in the next event-loop iteration.
  void willChange();

 private:
  /// The extras of one sweep.
  struct ExtrasReading {
    SystemExtras extras;
    ThermalState thermalState = ThermalState::unknown;
  };

  struct Sweep;

  void start(std::unique_ptr<PressureSource> source, const std::optional<std::int32_t>& pressureLevel);
  void refresh();
  void scheduleTimer(double interval);
  void pressureChanged(MemoryPressure level);
  void perform(Sweep& sweep);      ///< on the sample queue
  void finishSweep(Sweep& sweep);  ///< on the main thread
  void updateFrontmost(const MemorySnapshot& snapshot);

  template <typename Value>
  void publish(Value& field, Value value) {
    Q_EMIT willChange();
    field = std::move(value);
  }

  static constexpr double openInterval = 3.0;     ///< seconds between sweeps while the popover is open
  static constexpr double closedInterval = 30.0;  ///< seconds between sweeps while it is closed

  std::optional<MemorySnapshot> snapshot_;
  MemoryPressure pressure_ = MemoryPressure::normal;
  std::optional<std::uint64_t> frontmostFootprint_;
  std::optional<SystemExtras> extras_;
  ThermalState thermalState_ = ThermalState::unknown;

  RunLoop& mainLoop_;
  std::function<std::unique_ptr<TaskQueue>(const std::string& label)> makeQueue_;
  FrontmostApplicationSource frontmostApplication_;
  std::function<int()> activeProcessorCount_;

  MemorySampler sampler_;                   ///< used on the sample queue only
  ExtrasReader extrasReader_;               ///< used on the sample queue only
  std::unique_ptr<TaskQueue> sampleQueue_;  ///< destroyed before the members that its tasks use
  std::unique_ptr<MemoryPressureMonitor> pressureMonitor_;
  std::unique_ptr<RepeatingTimer> timer_;
  bool sampling_ = false;  ///< from a request until its results are published
  bool popoverOpen_ = false;
};

}  // namespace tarn
