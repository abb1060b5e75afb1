// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/file_reading.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace tarn {

namespace {

// Without O_NONBLOCK, open() of a FIFO waits for a writer.
constexpr int openFlags = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

/// Returns the number of bytes read; 0 at the end of the file and on failure.
std::size_t readSome(int file, std::span<char> buffer) {
  ssize_t count = 0;
  do {
    count = ::read(file, buffer.data(), buffer.size());
  } while (count < 0 && errno == EINTR);
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

}  // namespace

FileDescriptor::~FileDescriptor() {
  if (valid()) ::close(number_);
}

std::string_view readOnce(int directory, const char* path, std::span<char> buffer) {
  const FileDescriptor file(::openat(directory, path, openFlags));
  if (!file.valid()) return {};
  return {buffer.data(), readSome(file.number(), buffer)};
}

std::string readFile(const std::string& path, std::size_t limit) {
  const FileDescriptor file(::open(path.c_str(), openFlags));
  struct stat status {};
  if (!file.valid() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
  std::string text;
  constexpr std::size_t step = 4096;
  while (text.size() < limit) {
    const std::size_t before = text.size();
    text.resize(std::min(limit, before + std::max(step, before)));
    const std::size_t count = readSome(file.number(), std::span(text).subspan(before));
    text.resize(before + count);
    if (count == 0) break;
  }
  return text;
}

std::vector<std::string> namesIn(const std::string& directory, std::size_t maxCount) {
  std::vector<std::string> names;
  const DirectoryStream stream(::opendir(directory.c_str()));
  if (!stream) return names;
  // No other thread uses this stream.
  // NOLINTNEXTLINE(concurrency-mt-unsafe)
  for (const dirent* entry = ::readdir(stream.get()); entry != nullptr && names.size() < maxCount;
       entry = ::readdir(stream.get())) {  // NOLINT(concurrency-mt-unsafe)
    const std::string_view name = static_cast<const char*>(entry->d_name);
    if (name != "." && name != "..") names.emplace_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace tarn
