// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/psi/psi_pressure_source.hpp"

#include <atomic>
#include <new>
#include <thread>
#include <utility>

#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {

namespace {

std::optional<MemoryPressure> levelAtOnce(const PressureLook& look) {
  return pressureAtOnce(look.stalls, look.availability);
}

}  // namespace

PressureLook lookAtPressure(const LinuxRoots& roots) {
  return {parseMemoryStalls(readFile(roots.proc + "/pressure/memory")),
          memoryAvailability(parseMemoryInfo(readFile(roots.proc + "/meminfo")))};
}

PressureWatch::PressureWatch(LinuxRoots roots, PressureEvents& events, SteadyClock clock)
    : roots_(std::move(roots)), events_(events), clock_(std::move(clock)) {}

PressureWatch::Measurement PressureWatch::measure() const {
  // Nothing is assigned that is still there after a throw: the compiler may have written half of it by then.
  try {
    return {lookAtPressure(roots_), clock_()};
  } catch (const std::bad_alloc&) {
    return {{}, clock_()};  // nothing can be told without the memory to look
  }
}

void PressureWatch::run(const Handler& handler) {
  bool armed = events_.arm();
  Measurement before = measure();
  StallReports reports(before.look.stalls);
  PressureHysteresis level(levelAtOnce(before.look).value_or(MemoryPressure::normal), before.time);
  for (;;) {
    const PressureWake wake = events_.wait(armed ? restWithEvents : restWithout);
    if (wake.cancelled) return;
    const Measurement now = measure();
    StallVerdict stalls = reports.believed({wake.some, wake.full}, now.look.stalls);
    if (!armed && before.look.stalls && now.look.stalls) {
      stalls = stallsBetween(*before.look.stalls, *now.look.stalls, now.time - before.time);
    }
    if (wake.lost) armed = false;
    before = now;

    const MemoryPressure told = level.level();
    if (now.look.availability) {
      const double someAverage10 = now.look.stalls ? now.look.stalls->some.average10 : 0;
      level.update(pressureOf(stalls, *now.look.availability), someAverage10, now.time);
    }
    const bool reported = stalls.some || stalls.full;
    if (reported || level.level() != told) handler(static_cast<PressureFlags>(level.level()));
  }
}

/// What the source and its task on the queue share. The first to change the state from `waiting` decides
/// whether the watch happens: the task that begins, or the destruction that finds it not begun.
struct PsiPressureSource::Run {
  enum class State { waiting, running, ended };

  LinuxRoots roots;
  std::unique_ptr<PressureEvents> events;
  SteadyClock clock;
  Handler handler;
  std::atomic<std::thread::id> thread{};
  std::atomic<State> state{State::waiting};

  bool leaveWaiting(State next) {
    State expected = State::waiting;
    return state.compare_exchange_strong(expected, next);
  }

  void watch() {
    if (!leaveWaiting(State::running)) return;
    thread = std::this_thread::get_id();
    PressureWatch(roots, *events, clock).run(handler);
    handler = nullptr;
    state = State::ended;
    state.notify_all();
  }
};

PsiPressureSource::PsiPressureSource(const LinuxRoots& roots)
    : PsiPressureSource(roots, std::make_unique<KernelPressureEvents>(roots),
                        std::chrono::steady_clock::now) {}

PsiPressureSource::PsiPressureSource(LinuxRoots roots, std::unique_ptr<PressureEvents> events,
                                     SteadyClock clock)
    : run_(std::make_shared<Run>()) {
  run_->roots = std::move(roots);
  run_->events = std::move(events);
  run_->clock = std::move(clock);
}

void PsiPressureSource::resume(TaskQueue& queue, Handler handler) {
  run_->handler = std::move(handler);
  queue.async([run = run_] { run->watch(); });
}

PsiPressureSource::~PsiPressureSource() {
  if (run_->leaveWaiting(Run::State::ended)) {
    run_->handler = nullptr;  // the queue may keep the task, but nothing that the handler holds
    return;
  }
  run_->events->cancel();
  if (run_->thread == std::this_thread::get_id())
    return;  // the handler destroys its source: it is the last call
  run_->state.wait(Run::State::running);
}

std::optional<std::int32_t> readPressureLevel(const LinuxRoots& roots) {
  const auto level = levelAtOnce(lookAtPressure(roots));
  if (!level) return std::nullopt;
  return static_cast<std::int32_t>(*level);
}

}  // namespace tarn
