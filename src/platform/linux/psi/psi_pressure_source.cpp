// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/psi/psi_pressure_source.hpp"

#include <fcntl.h>
#include <linux/magic.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <thread>
#include <utility>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/psi/pressure_level.hpp"
#include "platform/linux/psi/psi_file.hpp"

namespace tarn {

namespace {

constexpr std::chrono::seconds checkInterval{15};  // of the available memory, while triggers are armed
constexpr std::chrono::seconds pollInterval{2};    // without triggers

/// Opens the file and registers a trigger on it. The trigger exists while the file is open; each trigger
/// needs a separate file descriptor.
FileDescriptor openTrigger(const std::string& path, const std::string& trigger) {
  FileDescriptor file(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!file.valid()) return {};
  // Write only to procfs: tests replace /proc with a directory of regular files.
  struct statfs fileSystem {};
  if (::fstatfs(file.number(), &fileSystem) != 0 || fileSystem.f_type != PROC_SUPER_MAGIC) return {};
  // The kernel replaces the last byte with a zero, so the terminating zero is written too.
  if (::write(file.number(), trigger.c_str(), trigger.size() + 1) < 0) return {};
  return file;
}

class KernelPsiTriggers final : public PsiTriggers {
 public:
  explicit KernelPsiTriggers(const LinuxRoots& roots) : path_(roots.proc + "/pressure/memory") {}

  bool arm() override {
    FileDescriptor some = openTrigger(path_, someTrigger_);
    FileDescriptor full = openTrigger(path_, fullTrigger_);
    if (!some.valid() || !full.valid()) return false;
    some_ = std::move(some);
    full_ = std::move(full);
    return true;
  }

  Wake wait(std::chrono::milliseconds timeout) override {
    // Without the eventfd nothing could end the wait.
    if (!cancellation_.valid()) return {.cancelled = true};
    // poll() ignores negative descriptors: those of triggers that are not armed.
    std::array<pollfd, 3> files{pollfd{cancellation_.number(), POLLIN, 0}, pollfd{some_.number(), POLLPRI, 0},
                                pollfd{full_.number(), POLLPRI, 0}};
    const auto limit = std::clamp<std::int64_t>(timeout.count(), 0, std::numeric_limits<int>::max());
    int ready = 0;
    do {
      ready = ::poll(files.data(), files.size(), static_cast<int>(limit));
    } while (ready < 0 && errno == EINTR);
    if (ready < 0) return {.cancelled = true};
    const auto has = [](const pollfd& file, int events) { return (file.revents & events) != 0; };
    constexpr int failure = POLLERR | POLLHUP | POLLNVAL;
    if (has(files[1], failure) || has(files[2], failure)) {
      some_ = {};
      full_ = {};
      return {.cancelled = has(files[0], POLLIN), .lost = true};
    }
    return {has(files[0], POLLIN), has(files[1], POLLPRI), has(files[2], POLLPRI), false};
  }

  void cancel() override {
    if (cancellation_.valid()) ::eventfd_write(cancellation_.number(), 1);
  }

 private:
  // Set here and not in arm(), which must not allocate: no function on its thread catches std::bad_alloc.
  std::string path_;
  std::string someTrigger_ = psiTrigger(MemoryPressure::warning);
  std::string fullTrigger_ = psiTrigger(MemoryPressure::critical);
  FileDescriptor cancellation_{::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)};  // stays readable once cancelled
  FileDescriptor some_;
  FileDescriptor full_;
};

MemoryInfo readMemoryInfo(const LinuxRoots& roots) {
  return parseMemoryInfo(readFile(roots.proc + "/meminfo"));
}

struct Reading {
  std::optional<PsiStats> psi;
  MemoryInfo memory;
  std::chrono::steady_clock::time_point time;
};

/// If an allocation fails, only the time is set in the reading.
Reading takeReading(const LinuxRoots& roots, const SteadyClock& clock) {
  // Each branch returns a new value: a value under construction may be incomplete when an allocation fails.
  try {
    return {readMemoryPsi(roots), readMemoryInfo(roots), clock()};
  } catch (const std::bad_alloc&) {
    return {{}, {}, clock()};
  }
}

/// Ignores false reports of triggers. The kernel may send the first report of a trigger at the first stall of
/// any length, as if it compared with the total at boot. The first report counts only if the total in the PSI
/// file has grown by the threshold since the trigger was armed.
class FirstReportFilter {
 public:
  /// `armed` was read after the triggers were armed. Without it no report is dropped.
  explicit FirstReportFilter(const std::optional<PsiStats>& armed) : armed_(armed) {}

  /// Returns the stall level (see `stallLevel`) that `wake` reports. `now` was read after the wake.
  MemoryPressure stallLevelOf(const PsiTriggers::Wake& wake, const std::optional<PsiStats>& now) {
    const bool compare = armed_ && now;
    const auto counts = [compare](bool reported, bool reportedBefore, const PsiStats::Line& atArming,
                                  const PsiStats::Line& latest, MemoryPressure level) {
      if (!reported || reportedBefore || !compare) return reported;
      return latest.totalMicros >=
             atArming.totalMicros + static_cast<std::uint64_t>(stallThreshold(level).count());
    };
    const PsiStats atArming = armed_.value_or(PsiStats{});
    const PsiStats latest = now.value_or(PsiStats{});
    const bool full = counts(wake.full, fullReported_, atArming.full, latest.full, MemoryPressure::critical);
    const bool some = counts(wake.some, someReported_, atArming.some, latest.some, MemoryPressure::warning);
    fullReported_ |= wake.full;
    someReported_ |= wake.some;
    if (full) return MemoryPressure::critical;
    return some ? MemoryPressure::warning : MemoryPressure::normal;
  }

 private:
  std::optional<PsiStats> armed_;
  bool someReported_ = false;
  bool fullReported_ = false;
};

}  // namespace

std::unique_ptr<PsiTriggers> PsiTriggers::ofKernel(const LinuxRoots& roots) {
  return std::make_unique<KernelPsiTriggers>(roots);
}

void watchPressure(const LinuxRoots& roots, PsiTriggers& triggers, const SteadyClock& clock,
                   const PressureSource::Handler& handler) {
  bool armed = triggers.arm();
  Reading before = takeReading(roots, clock);
  FirstReportFilter filter(before.psi);
  PressureHysteresis hysteresis(pressureLevel(before.psi, before.memory).value_or(MemoryPressure::normal),
                                before.time);
  for (;;) {
    const PsiTriggers::Wake wake = triggers.wait(armed ? checkInterval : pollInterval);
    if (wake.cancelled) return;
    const Reading now = takeReading(roots, clock);
    MemoryPressure stalls = filter.stallLevelOf(wake, now.psi);
    if (!armed && before.psi && now.psi) stalls = stallLevel(*before.psi, *now.psi, now.time - before.time);
    if (wake.lost) armed = false;
    before = now;

    const MemoryPressure lastLevel = hysteresis.level();
    if (const auto currentLevel = pressureLevel(stalls, now.memory)) {
      hysteresis.update(*currentLevel, now.psi ? now.psi->some.avg10 : 0, now.time);
    }
    const bool reported = stalls != MemoryPressure::normal;
    if (reported || hysteresis.level() != lastLevel) handler(static_cast<PressureFlags>(hysteresis.level()));
  }
}

/// The data that the source shares with its task on the queue. The task, when it begins, or the destructor
/// changes the state from `waiting`. The first of the two decides whether the watch runs.
struct PsiPressureSource::Watch {
  enum class State { waiting, running, ended };

  LinuxRoots roots;
  std::unique_ptr<PsiTriggers> triggers;
  SteadyClock clock;
  Handler handler;
  std::atomic<std::thread::id> thread{};  ///< that of the task, once it runs
  std::atomic<State> state{State::waiting};

  bool leaveWaiting(State next) {
    State expected = State::waiting;
    return state.compare_exchange_strong(expected, next);
  }

  void run() {
    if (!leaveWaiting(State::running)) return;
    thread = std::this_thread::get_id();
    watchPressure(roots, *triggers, clock, handler);
    handler = nullptr;
    state = State::ended;
    state.notify_all();
  }
};

PsiPressureSource::PsiPressureSource(const LinuxRoots& roots)
    : PsiPressureSource(roots, PsiTriggers::ofKernel(roots), std::chrono::steady_clock::now) {}

PsiPressureSource::PsiPressureSource(LinuxRoots roots, std::unique_ptr<PsiTriggers> triggers,
                                     SteadyClock clock)
    : watch_(std::make_shared<Watch>()) {
  watch_->roots = std::move(roots);
  watch_->triggers = std::move(triggers);
  watch_->clock = std::move(clock);
}

void PsiPressureSource::resume(TaskQueue& queue, Handler handler) {
  watch_->handler = std::move(handler);
  queue.async([watch = watch_] { watch->run(); });
}

PsiPressureSource::~PsiPressureSource() {
  if (watch_->leaveWaiting(Watch::State::ended)) {
    watch_->handler = nullptr;  // the queue may keep the task; free what the handler holds
    return;
  }
  watch_->triggers->cancel();
  // The handler destroys its source: the watch ends when the handler returns.
  if (watch_->thread == std::this_thread::get_id()) return;
  watch_->state.wait(Watch::State::running);
}

std::optional<std::int32_t> readPressureLevel(const LinuxRoots& roots) {
  const auto level = pressureLevel(readMemoryPsi(roots), readMemoryInfo(roots));
  if (!level) return std::nullopt;
  return static_cast<std::int32_t>(*level);
}

}  // namespace tarn
