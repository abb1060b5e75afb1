// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/kernel_clocks.hpp"

#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <string_view>

#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

/// Whether a procfs is mounted at `procRoot` and belongs to the pid namespace of this process. In a container
/// that mounts the /proc of the host, "self" has another pid.
bool isOwnProcfs(const std::string& procRoot) {
  struct statfs fileSystem {};
  if (::statfs(procRoot.c_str(), &fileSystem) != 0 || fileSystem.f_type != PROC_SUPER_MAGIC) return false;
  std::array<char, 16> target{};
  const ssize_t length = ::readlink((procRoot + "/self").c_str(), target.data(), target.size());
  return length > 0 &&
         parseWholeNumber<pid_t>({target.data(), static_cast<std::size_t>(length)}) == ::getpid();
}

std::optional<std::uint64_t> readProcessClock(std::int32_t pid) {
  if (pid <= 0) return std::nullopt;
  // The clock id of a process is ~pid in the upper 29 bits and CPUCLOCK_SCHED in the lower 3
  // (include/linux/posix-timers_types.h). clock_getcpuclockid() computes the same id and adds a system call.
  constexpr unsigned cpuClockSched = 2;
  const auto clock = static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3U) | cpuClockSched);
  struct timespec time {};
  if (::clock_gettime(clock, &time) != 0 || time.tv_sec < 0) return std::nullopt;
  constexpr std::uint64_t nanosPerSecond = 1'000'000'000;
  return static_cast<std::uint64_t>(time.tv_sec) * nanosPerSecond + static_cast<std::uint64_t>(time.tv_nsec);
}

}  // namespace

ProcessClock processClockFor(const std::string& procRoot) {
  if (isOwnProcfs(procRoot)) return readProcessClock;
  return [](std::int32_t) { return std::optional<std::uint64_t>{}; };
}

double uptimeSeconds() {
  struct timespec time {};
  if (::clock_gettime(CLOCK_MONOTONIC, &time) != 0) return 0;
  constexpr double nanosPerSecond = 1e9;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / nanosPerSecond;
}

}  // namespace tarn
