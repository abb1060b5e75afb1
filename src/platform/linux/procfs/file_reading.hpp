// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Reading small files without ever waiting for them: a pipe or device in the place of a file gives nothing.

#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace tarn {

/// Owns a file descriptor; -1 when there is none.
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

/// What one read of a file gives, as a view into `buffer`; empty when it cannot be read. Three system calls.
/// The kernel hands over a whole process file in one read when the buffer is large enough. `path` is relative
/// to the open directory.
std::string_view readOnce(int directory, const char* path, std::span<char> buffer);

/// The first `limit` bytes of a regular file; empty when there is none that can be read.
std::string readFile(const std::string& path, std::size_t limit = 65536);

}  // namespace tarn
