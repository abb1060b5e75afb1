// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/uptime.hpp"

#include <ctime>

namespace tarn {

double uptimeSeconds() {
  struct timespec time {};
  if (::clock_gettime(CLOCK_MONOTONIC, &time) != 0) return 0;
  constexpr double nanosPerSecond = 1e9;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / nanosPerSecond;
}

}  // namespace tarn
