// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {

/// A local socket that is asked one question: every wait ends with the deadline. Any failure makes all that
/// follows fail.
class BoundedSocket {
 public:
  using Clock = std::chrono::steady_clock;

  BoundedSocket(const std::string& path, Clock::time_point deadline);

  bool send(std::string_view bytes);

  /// So many bytes; nothing when fewer come.
  std::optional<std::string> receive(std::size_t count);

  /// All that comes until the other side closes; nothing when that is more than `most`.
  std::optional<std::string> receiveAll(std::size_t most);

 private:
  bool isReady(short events) const;
  /// Appends what has come, at most so many bytes; 0 at the end, nothing on failure.
  std::optional<std::size_t> take(std::string& bytes, std::size_t most);

  FileDescriptor socket_;
  Clock::time_point deadline_;
};

}  // namespace tarn
