// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// A library for LD_PRELOAD that shifts the clocks of a program. SHIFTED_CLOCKS names a file with the seconds
// that CLOCK_REALTIME, CLOCK_BOOTTIME and CLOCK_MONOTONIC are ahead: decimal digits, each number followed by
// a space. Processor time clocks are not shifted.

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

struct Shifts {
  long real = 0;
  long boot = 0;
  long monotonic = 0;
};

Shifts readShifts() {
  Shifts shifts;
  const char* const path = ::getenv("SHIFTED_CLOCKS");
  const int file = path == nullptr ? -1 : ::open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0) return shifts;
  std::array<char, 128> text{};
  if (::read(file, text.data(), text.size() - 1) > 0)
    std::sscanf(text.data(), "%ld %ld %ld ", &shifts.real, &shifts.boot, &shifts.monotonic);
  ::close(file);
  return shifts;
}

long shiftOf(clockid_t clock) {
  switch (clock) {
    case CLOCK_REALTIME:
    case CLOCK_REALTIME_COARSE:
      return readShifts().real;
    case CLOCK_BOOTTIME:
      return readShifts().boot;
    case CLOCK_MONOTONIC:
    case CLOCK_MONOTONIC_COARSE:
    case CLOCK_MONOTONIC_RAW:
      return readShifts().monotonic;
    default:
      return 0;
  }
}

}  // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const int result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
  if (result == 0) time->tv_sec += shiftOf(clock);
  return result;
}

extern "C" int gettimeofday(timeval* time, void* /*zone*/) noexcept {
  timespec now{};
  const int result = clock_gettime(CLOCK_REALTIME, &now);
  *time = {now.tv_sec, now.tv_nsec / 1000};
  return result;
}

extern "C" time_t time(time_t* seconds) noexcept {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  if (seconds != nullptr) *seconds = now.tv_sec;
  return now.tv_sec;
}
