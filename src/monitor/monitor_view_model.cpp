// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/monitor_view_model.hpp"

#include <utility>

namespace tarn {

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
      extrasReader_(std::move(ports.extras)),
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
  scheduleTimer(closedInterval);
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
  scheduleTimer(openInterval);
  refresh();
}

void MonitorViewModel::popoverClosed() {
  popoverOpen_ = false;
  scheduleTimer(closedInterval);
}

void MonitorViewModel::refresh() {
  // A request while a sweep is in flight is dropped: there is never a backlog.
  if (sampling_) return;
  sampling_ = true;
  const bool wantExtras = popoverOpen_;
  sampleQueue_->async([self = shared_from_this(), wantExtras]() mutable {
    MemorySnapshot snapshot = self->sampler_.sample();
    std::optional<ExtrasReading> extras;
    if (wantExtras) extras = ExtrasReading{self->extrasReader_.read(), self->extrasReader_.thermalState()};
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
    publish(extras_, std::optional(std::move(extras->extras)));
    thermalState_ = extras->thermalState;  // of the same gathering, announced with it
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
