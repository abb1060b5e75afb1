// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/monitor_view_model.hpp"

#include <new>
#include <utility>

#include "monitor/concurrency.hpp"

namespace tarn {

/// A sweep in flight: from the request to its results.
struct MonitorViewModel::Sweep {
  Sweep(std::shared_ptr<MonitorViewModel> forModel, bool withExtras)
      : model(std::move(forModel)), wantsExtras(withExtras) {}

  std::shared_ptr<MonitorViewModel> model;  ///< null once the results are published
  bool wantsExtras;
  std::optional<MemorySnapshot> snapshot;  ///< nullopt when memory ran out
  std::optional<ExtrasReading> extras;
};

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

void MonitorViewModel::startSweeping() {
  sampleQueue_->activate();
  pressureMonitor_->activate();
}

void MonitorViewModel::popoverOpened() {
  startSweeping();
  popoverOpen_ = true;
  scheduleTimer(openInterval);
  refresh();
}

void MonitorViewModel::popoverClosed() {
  popoverOpen_ = false;
  scheduleTimer(closedInterval);
}

void MonitorViewModel::refresh() {
  // A request while a sweep is in flight is dropped, so there is no backlog.
  if (sampling_) return;
  sampling_ = true;
  sampleQueue_->async([sweep = std::make_shared<Sweep>(shared_from_this(), popoverOpen_)] {
    RunLoop& mainLoop = sweep->model->mainLoop_;
    sweep->model->perform(*sweep);
    // The reference moves with the results, so the view model is not destroyed on this thread.
    post(mainLoop, [sweep] {
      if (const auto self = std::exchange(sweep->model, nullptr)) self->finishSweep(*sweep);
    });
  });
}

void MonitorViewModel::perform(Sweep& sweep) {
  try {
    MemorySnapshot snapshot = sampler_.sample();
    if (sweep.wantsExtras) sweep.extras = ExtrasReading{extrasReader_.read(), extrasReader_.thermalState()};
    sweep.snapshot = std::move(snapshot);
  } catch (const std::bad_alloc&) {
    // The published values stay; the timer requests the next sweep.
  }
}

void MonitorViewModel::finishSweep(Sweep& sweep) {
  if (sweep.snapshot) {
    publish(snapshot_, std::exchange(sweep.snapshot, std::nullopt));
    if (sweep.extras) {
      publish(extras_, std::optional(std::move(sweep.extras->extras)));
      // No further `willChange`: it was emitted for the extras.
      thermalState_ = sweep.extras->thermalState;
    }
    updateFrontmost(*snapshot_);
  }
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

void MonitorViewModel::updateFrontmost(const MemorySnapshot& snapshot) {
  std::optional<std::uint64_t> footprint;
  if (const auto application = frontmostApplication_()) {
    if (const AppGroup* group = groupOf(*application, snapshot)) footprint = group->footprint;
  }
  publish(frontmostFootprint_, footprint);
}

}  // namespace tarn
