// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Reads small files and lists directories of procfs, sysfs and /etc. No function here blocks: a FIFO or a
// device instead of a regular file reads as empty.

#pragma once

#include <dirent.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

/// Owns a file descriptor; -1 means none.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor();

  bool valid() const { return number_ >= 0; }
  int number() const { return number_; }

 private:
  int number_ = -1;
};

/// Opens a file, calls `read` once and closes it: three system calls, no allocation. Returns a view into
/// `buffer`; empty when the file cannot be read. `path` is relative to the open directory. One `read` returns
/// a whole procfs file if the buffer is large enough.
std::string_view readOnce(int directory, const char* path, std::span<char> buffer);

/// Returns the first `limit` bytes of a regular file; empty when it is no regular file or cannot be read.
std::string readFile(const std::string& path, std::size_t limit = 65536);

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

/// Owns an open directory; null when it could not be opened.
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

/// Returns the names in a directory, sorted, without "." and "..". Takes only the first `maxCount` names that
/// the system lists. Empty when the directory cannot be listed. Throws std::bad_alloc, unlike
/// std::filesystem::directory_iterator, which terminates the program.
std::vector<std::string> namesIn(const std::string& directory, std::size_t maxCount);

}  // namespace tarn
