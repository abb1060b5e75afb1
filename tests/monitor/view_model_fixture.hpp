// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "monitor/monitor_view_model.hpp"
#include "support/fake_extras.hpp"
#include "support/fake_machine.hpp"
#include "support/fake_pressure_source.hpp"
#include "support/stepped_run_loop.hpp"

namespace tarn {

/// The published values, as an observer reads them at one moment.
struct Published {
  std::optional<std::uint64_t> swapUsed;  ///< of the snapshot; different in each snapshot
  std::optional<double> uptime;           ///< of the extras; different in each reading
  std::optional<std::uint64_t> frontmostFootprint;
  MemoryPressure pressure = MemoryPressure::normal;
  ThermalState thermalState = ThermalState::unknown;

  bool operator==(const Published&) const = default;
};

/// A view model of a fake machine. Tasks run, and time advances, only when the test requests it.
class ViewModelTest : public ::testing::Test {
 protected:
  ViewModelTest() {
    machine_.processes = {
        {.pid = 10, .path = "/opt/A.app/a", .usage = ProcessUsage{.footprint = 600}},
        {.pid = 11, .path = "/opt/A.app/b", .usage = ProcessUsage{.footprint = 300}},
        {.pid = 20, .path = "/usr/bin/tool", .usage = ProcessUsage{.footprint = 50}},
    };
    extras_.uptime = 1;
    extras_.thermalState = ThermalState::fair;
    extras_.onCall = [this](const std::string& operation) {
      machine_.calls.push_back("extras " + operation);
    };
  }

  MonitorPorts ports() {
    return {.mainLoop = mainLoop_,
            .makeQueue =
                [this](const std::string& label) {
                  machine_.calls.push_back("queue " + label);
                  return queues_.make(label);
                },
            .sampler = samplerPortOf(machine_),
            .extras = extras_.port(),
            .pressureLevel =
                [this] {
                  machine_.calls.emplace_back("pressureLevel");
                  return pressureLevel_;
                },
            .pressureSource = std::make_unique<FakePressureSource>(pressure_),
            .frontmostApplication = [this] { return frontmost_; },
            .activeProcessorCount = [this] { return activeProcessors_; }};
  }

  /// Creates a view model; its first sweep is queued.
  void start() { model_ = MonitorViewModel::create(ports()); }

  /// Creates a view model and completes its first sweep.
  void startAndFinishSweep() {
    start();
    finishSweep();
  }

  SteppedTasks& sweeps() { return queues_["com.tarn.sampler"]; }
  SteppedTasks& mainTasks() { return mainLoop_.tasks; }

  void finishSweep() {
    sweeps().runAll();
    mainTasks().runAll();
  }

  /// Advances the time and delivers the timer's ticks.
  void advanceTime(double seconds) {
    mainLoop_.advance(seconds);
    mainTasks().runAll();
  }

  void reportPressure(PressureFlags flags) {
    pressure_.report(flags);
    queues_["com.tarn.pressure"].runAll();
  }

  Published published() const {
    Published values;
    if (model_->snapshot()) values.swapUsed = model_->snapshot()->system.swapUsed;
    if (model_->extras()) values.uptime = model_->extras()->uptime;
    values.frontmostFootprint = model_->frontmostFootprint();
    values.pressure = model_->pressure();
    values.thermalState = model_->thermalState();
    return values;
  }

  /// Records the published values at each later `willChange`. Returns the list of the records.
  std::vector<Published>& observe() {
    QObject::connect(model_.get(), &MonitorViewModel::willChange, model_.get(),
                     [this] { observed_.push_back(published()); });
    return observed_;
  }

  FakeMachine machine_;
  FakePressure pressure_;
  std::optional<std::int32_t> pressureLevel_ = 1;
  std::optional<FrontmostApplication> frontmost_;
  FakeExtras extras_;
  int activeProcessors_ = 8;

  std::vector<Published> observed_;
  SteppedRunLoop mainLoop_;
  SteppedQueues queues_;
  std::shared_ptr<MonitorViewModel> model_;
};

}  // namespace tarn
