// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/sleeping_process_cache.hpp"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <limits>
#include <utility>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

constexpr std::size_t shortFile = 4096;
constexpr std::size_t statusFile = 65536;

// The start time stands behind a line that grows with the number of interrupts.
constexpr std::size_t systemStatFile = std::size_t{4} << 20U;

/// No machine holds this much (1 PiB): more is garbage, and sums of such garbage would overflow.
constexpr std::uint64_t absurdFootprint = std::uint64_t{1} << 50U;

std::uint64_t systemConstant(int name, std::uint64_t otherwise) {
  const long value = ::sysconf(name);
  return value > 0 ? static_cast<std::uint64_t>(value) : otherwise;
}

/// "PID/file" on the stack.
class ProcessFilePath {
 public:
  ProcessFilePath(std::int32_t pid, std::string_view file) {
    char* const pidEnd = std::to_chars(text_.data(), text_.data() + pidDigits, pid).ptr;
    *pidEnd = '/';
    *std::copy(file.begin(), file.end(), pidEnd + 1) = '\0';
  }

  const char* text() const { return text_.data(); }

 private:
  static constexpr std::size_t pidDigits = std::numeric_limits<std::int32_t>::digits10 + 2;
  static constexpr std::size_t longestFile = 16;  // "cmdline" is the longest in use
  std::array<char, pidDigits + 1 + longestFile + 1> text_{};
};

}  // namespace

LinuxProcScan::LinuxProcScan(const LinuxRoots& roots) : LinuxProcScan(roots, processClockFor(roots.proc)) {}

LinuxProcScan::LinuxProcScan(LinuxRoots roots, ProcessClock clock)
    : roots_(std::move(roots)),
      clock_(std::move(clock)),
      bootTime_(parseBootTime(readFile(roots_.proc + "/stat", systemStatFile)).value_or(0)),
      ticksPerSecond_(systemConstant(_SC_CLK_TCK, 100)),
      pageSize_(systemConstant(_SC_PAGESIZE, 4096)),
      buffer_(shortFile),
      statusBuffer_(std::make_unique_for_overwrite<char[]>(statusFile)) {
  openDirectory();
}

bool LinuxProcScan::openDirectory() {
  if (!directory_) directory_.reset(::opendir(roots_.proc.c_str()));
  return directory_ != nullptr;
}

std::vector<std::int32_t> LinuxProcScan::allPIDs() {
  known_.eraseIf([this](std::int32_t, const KnownProcess& process) { return process.sweep != sweep_; });
  ++sweep_;
  parentDepth_ = 0;  // a sweep that ran out of memory may have left some
  swapInUse_ = parseSwaps(readFile(roots_.proc + "/swaps")).used > 0;

  if (!openDirectory()) return {};
  std::vector<std::int32_t> pids;
  pids.reserve(known_.size() + 64);
  ::rewinddir(directory_.get());
  errno = 0;
  while (const dirent* const entry = ::readdir(directory_.get())) {
    const auto pid = parseWholeNumber<std::int32_t>(static_cast<const char*>(entry->d_name));
    if (pid && *pid > 0) {
      pids.push_back(*pid);
      askClockEarly(*pid);
    }
    errno = 0;
  }
  if (errno != 0) return {};
  return pids;
}

/// What the kernel keeps of a process that it has just listed is still in the processor's caches.
void LinuxProcScan::askClockEarly(std::int32_t pid) {
  KnownProcess* const known = known_.find(pid);
  if (known == nullptr) return;
  known->clockAtListing = clock_(pid);
  known->listing = sweep_;
}

/// A process's clock as of its listing, if that is news, else as of now.
std::optional<std::uint64_t> LinuxProcScan::clockOf(std::int32_t pid, KnownProcess& known) const {
  return std::exchange(known.listing, 0) == sweep_ ? known.clockAtListing : clock_(pid);
}

std::optional<BsdInfo> LinuxProcScan::bsdInfo(std::int32_t pid) {
  KnownProcess* process = known_.find(pid);
  const bool isMet =
      process != nullptr && process->sweep == sweep_ && std::exchange(process->wasMetEarly, false);
  if (!isMet) process = refresh(pid);
  if (!process) return std::nullopt;
  std::uint64_t startSeconds = 0;
  if (__builtin_add_overflow(bootTime_, process->startTicks / ticksPerSecond_, &startSeconds)) {
    return std::nullopt;
  }
  return BsdInfo{process->ppid, process->owner, startSeconds};
}

std::string LinuxProcScan::path(std::int32_t pid) {
  if (pid <= 0 || !openDirectory()) return {};
  const ProcessFilePath link(pid, "exe");
  const ssize_t length = ::readlinkat(::dirfd(directory_.get()), link.text(), buffer_.data(), buffer_.size());
  // A target that fills the buffer may be cut off: no path is better than a wrong one.
  if (length <= 0 || static_cast<std::size_t>(length) >= buffer_.size()) return {};
  return std::string(withoutDeletedMark({buffer_.data(), static_cast<std::size_t>(length)}));
}

std::optional<ProcessUsage> LinuxProcScan::usage(std::int32_t pid) {
  KnownProcess* const process = metInThisSweep(pid);
  const bool isQuiet = process != nullptr && process->isQuiet;
  const auto footprint = isQuiet ? process->footprint : readFootprint(pid);
  // What it uses can be told of a process, too, about whose origin nothing can be.
  const auto time = process != nullptr ? processorTime(*process) : clock_(pid);
  if (process != nullptr) process->footprint = footprint;
  if (!footprint || !time) return std::nullopt;
  return ProcessUsage{*footprint, *time};
}

SharedText LinuxProcScan::processName(std::int32_t pid) {
  KnownProcess* const process = metInThisSweep(pid);
  if (!process) return {};
  if (!process->displayName) process->displayName = readDisplayName(pid, process->kernelName);
  return *process->displayName;
}

std::optional<std::uint64_t> LinuxProcScan::programOf(std::int32_t pid) const {
  const KnownProcess* const process = known_.find(pid);
  if (process == nullptr || process->sweep != sweep_ || process->program == 0) return std::nullopt;
  return process->program;
}

std::string_view LinuxProcScan::readProcessFile(std::int32_t pid, std::string_view file,
                                                std::span<char> buffer) {
  if (pid <= 0 || !openDirectory()) return {};
  return readOnce(::dirfd(directory_.get()), ProcessFilePath(pid, file).text(), buffer);
}

std::string_view LinuxProcScan::readStatus(std::int32_t pid) {
  return readProcessFile(pid, "status", {statusBuffer_.get(), statusFile});
}

/// The start of a process's parent, which tells it from another one of its pid; 0 when it is not known. A
/// parent that this sweep has yet to meet is met now, which moves what is known of others.
std::uint64_t LinuxProcScan::startOfParent(std::int32_t ppid) {
  constexpr int deepest = 16;
  const KnownProcess* parent = known_.find(ppid);
  if (parent != nullptr && parent->sweep != sweep_) {
    if (parentDepth_ >= deepest) return 0;
    ++parentDepth_;
    KnownProcess* const met = refresh(ppid);
    --parentDepth_;
    if (met != nullptr) met->wasMetEarly = true;
    parent = met;
  }
  return parent == nullptr ? 0 : parent->startTicks;
}

/// Whether nothing about a process can have changed if it has not run.
bool LinuxProcScan::mayBeQuiet(std::int32_t pid) {
  constexpr std::uint64_t sweepsBetween = 10;
  const KnownProcess* const process = known_.find(pid);
  const bool isDue = (sweep_ + static_cast<std::uint64_t>(pid)) % sweepsBetween == 0;
  if (process == nullptr || isDue || swapInUse_ || !process->clockTime || !process->footprint) return false;
  if (process->ppid == 0) return true;
  // Who loses its parent gets another one without running.
  const std::uint64_t start = process->parentStartTicks;
  return start != 0 && start == startOfParent(process->ppid);
}

/// Looks whether a process has run and, if so, reads it anew. Null, and forgotten, when it is gone.
LinuxProcScan::KnownProcess* LinuxProcScan::refresh(std::int32_t pid) {
  const bool mayHaveSlept = mayBeQuiet(pid);
  std::optional<std::uint64_t> start;
  std::optional<std::uint64_t> time;
  if (KnownProcess* const known = known_.find(pid)) {
    start = known->startTicks;
    time = clockOf(pid, *known);
    if (mayHaveSlept && time == known->clockTime) {
      known->isQuiet = true;
      known->wasMetEarly = false;
      known->sweep = sweep_;
      return known;
    }
  }
  KnownProcess* const process = readAnew(pid);
  // What was asked for may have been the clock of another process, which has ended and left its pid.
  if (process != nullptr) process->clockTime = process->startTicks == start ? time : clock_(pid);
  return process;
}

/// Reads `stat` and, for a process that was not known, its owner. Null, and forgotten, when it is gone.
LinuxProcScan::KnownProcess* LinuxProcScan::readAnew(std::int32_t pid) {
  const auto stat = parseProcessStat(readProcessFile(pid, "stat", buffer_));
  std::uint64_t ticks = 0;
  if (!stat || __builtin_add_overflow(stat->userTicks, stat->systemTicks, &ticks)) {
    known_.erase(pid);
    return nullptr;
  }
  const auto [entry, isNew] = known_.tryEmplace(pid);
  KnownProcess& process = *entry;
  const bool hasOtherName = process.kernelName != stat->name;
  // A thread of the kernel is the same by any name.
  if (isNew || process.startTicks != stat->startTicks || (hasOtherName && !stat->isKernelThread)) {
    const auto owner = parseRealOwner(readStatus(pid));
    if (!owner) {
      known_.erase(pid);
      return nullptr;
    }
    process = {.startTicks = stat->startTicks, .owner = *owner};
    if (!stat->isKernelThread) process.program = ++programs_;
  }
  if (process.kernelName != stat->name) {
    process.kernelName = stat->name;
    if (stat->isKernelThread) process.displayName = process.kernelName;
  }
  process.ppid = stat->ppid;
  process.processorTicks = ticks;
  process.footprint.reset();  // it has run since; nobody may ask in this sweep, where memory runs out
  process.sweep = sweep_;
  process.isQuiet = false;
  process.wasMetEarly = false;
  const std::uint64_t startOfItsParent = startOfParent(process.ppid);
  KnownProcess* const known = known_.find(pid);
  if (known != nullptr) known->parentStartTicks = startOfItsParent;
  return known;
}

/// What this sweep has read of a process already, else what there is to read.
LinuxProcScan::KnownProcess* LinuxProcScan::metInThisSweep(std::int32_t pid) {
  KnownProcess* const process = known_.find(pid);
  return process != nullptr && process->sweep == sweep_ ? process : refresh(pid);
}

std::optional<std::uint64_t> LinuxProcScan::readFootprint(std::int32_t pid) {
  const auto pages = parseProcessPages(readProcessFile(pid, "statm", buffer_));
  if (!pages) return std::nullopt;
  std::uint64_t bytes = 0;
  const std::uint64_t anonymous = pages->resident - std::min(pages->resident, pages->shared);
  if (__builtin_mul_overflow(anonymous, pageSize_, &bytes)) return std::nullopt;
  if (swapInUse_) {
    const std::string_view status = readStatus(pid);
    if (status.empty() || __builtin_add_overflow(bytes, parseSwappedBytes(status), &bytes))
      return std::nullopt;
  }
  if (bytes >= absurdFootprint) return std::nullopt;
  return bytes;
}

std::optional<std::uint64_t> LinuxProcScan::processorTime(const KnownProcess& process) const {
  if (process.clockTime) return process.clockTime;
  constexpr std::uint64_t nanosPerSecond = 1'000'000'000;
  std::uint64_t nanos = 0;
  if (__builtin_mul_overflow(process.processorTicks, nanosPerSecond / ticksPerSecond_, &nanos))
    return std::nullopt;
  return nanos;
}

std::string LinuxProcScan::readDisplayName(std::int32_t pid, const std::string& kernelName) {
  std::string_view commandLine = readProcessFile(pid, "cmdline", buffer_);
  const bool cutOff =
      commandLine.size() == buffer_.size() && commandLine.find('\0') == std::string_view::npos;
  if (cutOff) commandLine = {};
  return std::string(completedName(kernelName, commandLine));
}

}  // namespace tarn
