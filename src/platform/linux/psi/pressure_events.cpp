// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/psi/pressure_events.hpp"

#include <fcntl.h>
#include <linux/magic.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

namespace tarn {

namespace {

// Threshold and window in microseconds. The kernel grants an ordinary user windows of whole two seconds only,
// and wants the terminating zero.
constexpr std::string_view someTrigger("some 200000 2000000\0", 20);
constexpr std::string_view fullTrigger("full 400000 2000000\0", 20);

/// A trigger lives as long as the file that it was written to stays open, and each needs its own.
FileDescriptor openTrigger(const std::string& path, std::string_view trigger) {
  FileDescriptor file(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!file.valid()) return {};
  // A captured tree is for reading only.
  struct statfs fileSystem {};
  if (::fstatfs(file.number(), &fileSystem) != 0 || fileSystem.f_type != PROC_SUPER_MAGIC) return {};
  if (::write(file.number(), trigger.data(), trigger.size()) < 0) return {};
  return file;
}

}  // namespace

KernelPressureEvents::KernelPressureEvents(const LinuxRoots& roots)
    : path_(roots.proc + "/pressure/memory"), cancellation_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

bool KernelPressureEvents::arm() {
  FileDescriptor some = openTrigger(path_, someTrigger);
  FileDescriptor full = openTrigger(path_, fullTrigger);
  if (!some.valid() || !full.valid()) return false;
  some_ = std::move(some);
  full_ = std::move(full);
  return true;
}

PressureWake KernelPressureEvents::wait(std::chrono::milliseconds timeout) {
  // Nothing could end a wait without the means to cancel it.
  if (!cancellation_.valid()) return {.cancelled = true};
  // Negative numbers, for triggers that are not there, are passed over.
  std::array<pollfd, 3> files{pollfd{cancellation_.number(), POLLIN, 0}, pollfd{some_.number(), POLLPRI, 0},
                              pollfd{full_.number(), POLLPRI, 0}};
  const auto limit = std::clamp<std::int64_t>(timeout.count(), 0, std::numeric_limits<int>::max());
  int ready = 0;
  do {
    ready = ::poll(files.data(), files.size(), static_cast<int>(limit));
  } while (ready < 0 && errno == EINTR);
  if (ready < 0) return {.cancelled = true};
  const auto reports = [](const pollfd& file, int events) { return (file.revents & events) != 0; };
  constexpr int failure = POLLERR | POLLHUP | POLLNVAL;
  if (reports(files[1], failure) || reports(files[2], failure)) {
    some_ = {};
    full_ = {};
    return {.cancelled = reports(files[0], POLLIN), .lost = true};
  }
  return {reports(files[0], POLLIN), reports(files[1], POLLPRI), reports(files[2], POLLPRI), false};
}

void KernelPressureEvents::cancel() {
  if (cancellation_.valid()) ::eventfd_write(cancellation_.number(), 1);
}

}  // namespace tarn
