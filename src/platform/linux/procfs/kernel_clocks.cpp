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

/// Whether this is a mounted process table in which this process bears its own pid. It does not where a
/// container is shown the table of its host.
bool isOwnProcessTable(const std::string& procRoot) {
  struct statfs fileSystem {};
  if (::statfs(procRoot.c_str(), &fileSystem) != 0 || fileSystem.f_type != PROC_SUPER_MAGIC) return false;
  std::array<char, 16> target{};
  const ssize_t length = ::readlink((procRoot + "/self").c_str(), target.data(), target.size());
  return length > 0 &&
         parseWholeNumber<pid_t>({target.data(), static_cast<std::size_t>(length)}) == ::getpid();
}

std::optional<std::uint64_t> readProcessClock(std::int32_t pid) {
  if (pid <= 0) return std::nullopt;
  // The kernel's own numbering of process clocks. The library's function gives the same number, at the price
  // of a system call that asks whether it is valid, which the reading itself shows.
  constexpr unsigned scheduledTime = 2;
  const auto clock = static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3U) | scheduledTime);
  struct timespec time {};
  if (::clock_gettime(clock, &time) != 0 || time.tv_sec < 0) return std::nullopt;
  constexpr std::uint64_t nanosPerSecond = 1'000'000'000;
  return static_cast<std::uint64_t>(time.tv_sec) * nanosPerSecond + static_cast<std::uint64_t>(time.tv_nsec);
}

}  // namespace

ProcessClock processClockFor(const std::string& procRoot) {
  if (isOwnProcessTable(procRoot)) return readProcessClock;
  return [](std::int32_t) { return std::optional<std::uint64_t>{}; };
}

}  // namespace tarn
