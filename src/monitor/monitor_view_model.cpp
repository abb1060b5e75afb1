// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/monitor_view_model.hpp"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

/// The group that the frontmost application is shown as; null when the snapshot does not have it.
const AppGroup* groupOf(const FrontmostApplication& application, const MemorySnapshot& snapshot) {
  const auto& groups = snapshot.groups;
  if (application.bundlePath) {
    const auto byPath = std::find_if(groups.begin(), groups.end(), [&](const AppGroup& group) {
      return group.bundlePath == application.bundlePath;
    });
    if (byPath != groups.end()) return &*byPath;
  }
  const auto holdsProcess = [&](const AppGroup& group) {
    return std::any_of(group.processes.begin(), group.processes.end(), [&](const ProcessSample& process) {
      return process.pid == application.processIdentifier;
    });
  };
  const auto byProcess = std::find_if(groups.begin(), groups.end(), holdsProcess);
  return byProcess == groups.end() ? nullptr : &*byProcess;
}

}  // namespace

std::shared_ptr<MonitorViewModel> MonitorViewModel::create(MonitorPorts ports) {
  auto source = std::move(ports.pressureSource);
  const auto pressureLevel = std::move(ports.pressureLevel);
  auto model = std::make_shared<MonitorViewModel>(Token{}, std::move(ports));
  model->start(std::move(source), pressureLevel());
  return model;
}

MonitorViewModel::MonitorViewModel(Token /*token*/, MonitorPorts ports)
    : mainLoop_(ports.mainLoop),
      makeQueue_(std::move(ports.makeQueue)),
      frontmostApplication_(std::move(ports.frontmostApplication)),
      activeProcessorCount_(std::move(ports.activeProcessorCount)),
      sampler_(std::move(ports.sampler)),
      extrasReader_(std::move(ports.readExtras)),
      sampleQueue_(makeQueue_("com.tarn.sampler")) {}

void MonitorViewModel::start(std::unique_ptr<PressureSource> source,
                             const std::optional<std::int32_t>& pressureLevel) {
  pressure_ = memoryPressureFromReading(pressureLevel);
  pressureMonitor_ =
      std::make_unique<MemoryPressureMonitor>(std::move(source), makeQueue_("com.tarn.pressure"), mainLoop_,
                                              [weak = weak_from_this()](MemoryPressure level) {
                                                if (const auto self = weak.lock())
                                                  self->pressureChanged(level);
                                              });
  scheduleTimer(closedInterval_);
  refresh();
}

StatusPresentation MonitorViewModel::presentation() const {
  return {pressure_, snapshot_ ? snapshot_->system.swapUsed : 0};
}

CPUPresentation MonitorViewModel::cpuPresentation() const {
  return {snapshot_ ? snapshot_->totalCPUPercent() : 0, activeProcessorCount_()};
}

void MonitorViewModel::popoverOpened() {
  popoverOpen_ = true;
  scheduleTimer(openInterval_);
  refresh();
}

void MonitorViewModel::popoverClosed() {
  popoverOpen_ = false;
  scheduleTimer(closedInterval_);
}

void MonitorViewModel::refresh() {
  // A request while a sweep is in flight is dropped: there is never a backlog.
  if (sampling_) return;
  sampling_ = true;
  const bool wantExtras = popoverOpen_;
  sampleQueue_->async([self = shared_from_this(), wantExtras]() mutable {
    MemorySnapshot snapshot = self->sampler_.sample();
    std::optional<ExtrasReading> extras;
    if (wantExtras && self->extrasReader_) extras = self->extrasReader_();
    // The reference moves on with the results, so that the view model never dies on this thread.
    RunLoop& mainLoop = self->mainLoop_;
    mainLoop.async(
        [self = std::move(self), snapshot = std::move(snapshot), extras = std::move(extras)]() mutable {
          self->finishSweep(std::move(snapshot), std::move(extras));
        });
  });
}

void MonitorViewModel::finishSweep(MemorySnapshot snapshot, std::optional<ExtrasReading> extras) {
  publish(snapshot_, std::optional(std::move(snapshot)));
  if (extras) {
    thermalState_ = extras->thermalState;
    publish(extras_, std::optional(std::move(extras->extras)));
  }
  updateFrontmost(*snapshot_);
  sampling_ = false;
}

void MonitorViewModel::scheduleTimer(double interval) {
  if (timer_) timer_->invalidate();
  timer_ = mainLoop_.repeatingTimer(interval, [weak = weak_from_this(), &mainLoop = mainLoop_] {
    mainLoop.async([weak] {
      if (const auto self = weak.lock()) self->refresh();
    });
  });
}

void MonitorViewModel::pressureChanged(MemoryPressure level) {
  publish(pressure_, level);
  refresh();
}

void MonitorViewModel::updateFrontmost(const MemorySnapshot& with) {
  std::optional<std::uint64_t> footprint;
  if (const auto application = frontmostApplication_()) {
    if (const AppGroup* group = groupOf(*application, with)) footprint = group->footprint;
  }
  publish(frontmostFootprint_, footprint);
}

}  // namespace tarn
