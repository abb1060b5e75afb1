// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "programs/floor_sweep.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <ctime>
#include <stdexcept>

namespace tarn {

FloorSweep::FloorSweep() : directory_(::opendir("/proc")) {
  if (!directory_) throw std::runtime_error("no /proc");
}

std::size_t FloorSweep::run() {
  std::size_t count = 0;
  ::rewinddir(directory_.get());
  while (const dirent* const entry = ::readdir(directory_.get())) {
    const char* const name = static_cast<const char*>(entry->d_name);
    if (*name < '0' || *name > '9') continue;
    if (!read(name, "/stat") || !read(name, "/statm")) continue;
    int pid = 0;
    std::from_chars(name, name + std::strlen(name), pid);
    timespec time{};
    constexpr unsigned scheduledTime = 2;
    count += ::clock_gettime(static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3U) | scheduledTime),
                             &time) == 0;
  }
  return count;
}

bool FloorSweep::read(const char* pid, const char* file) {
  std::array<char, 32> path{};  // at most 10 digits and 6 letters
  char* const end = std::copy(pid, pid + std::strlen(pid), path.data());
  *std::copy(file, file + std::strlen(file), end) = '\0';
  const int descriptor = ::openat(::dirfd(directory_.get()), path.data(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const ssize_t length = ::read(descriptor, buffer_.data(), buffer_.size());
  ::close(descriptor);
  return length > 0;
}

}  // namespace tarn
