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

/// What a view model published, as an observer reads it at one moment.
struct Published {
  std::optional<std::uint64_t> swapUsed;  ///< of the snapshot: tells snapshots apart
  std::optional<double> uptime;           ///< of the extras: tells readings apart
  std::optional<std::uint64_t> frontmostFootprint;
  MemoryPressure pressure = MemoryPressure::normal;
  ThermalState thermalState = ThermalState::unknown;

  bool operator==(const Published&) const = default;
};

/// A view model over a fake machine, with queues, run loop and time that the test steps.
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

  /// A view model whose first sweep is waiting to run.
  void start() { model_ = MonitorViewModel::create(ports()); }

  /// A view model at rest after its first sweep.
  void startAndSettle() {
    start();
    finishSweep();
  }

  SteppedTasks& sweeps() { return queues_["com.tarn.sampler"]; }
  SteppedTasks& mainTasks() { return mainLoop_.tasks; }

  void finishSweep() {
    sweeps().runAll();
    mainTasks().runAll();
  }

  /// Lets time pass and the timer's ticks reach the view model.
  void pass(double seconds) {
    mainLoop_.advance(seconds);
    mainTasks().runAll();
  }

  void reportPressure(PressureFlags flags) {
    pressure_.report(flags);
    queues_["com.tarn.pressure"].runAll();
  }

  Published published() const {
    Published now;
    if (model_->snapshot()) now.swapUsed = model_->snapshot()->system.swapUsed;
    if (model_->extras()) now.uptime = model_->extras()->uptime;
    now.frontmostFootprint = model_->frontmostFootprint();
    now.pressure = model_->pressure();
    now.thermalState = model_->thermalState();
    return now;
  }

  /// From here on, what an observer reads whenever it is told of a change.
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
