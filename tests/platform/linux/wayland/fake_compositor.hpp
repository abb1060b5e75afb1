// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {

/// A compositor's IPC socket. A thread serves the connections one by one, each with a separate handler. After
/// the last handler the socket refuses connections.
class FakeCompositor {
 public:
  using Handler = std::function<void(int connection)>;

  explicit FakeCompositor(std::vector<Handler> handlers);
  explicit FakeCompositor(Handler handler) : FakeCompositor(std::vector{std::move(handler)}) {}
  FakeCompositor(const FakeCompositor&) = delete;
  FakeCompositor& operator=(const FakeCompositor&) = delete;
  ~FakeCompositor();

  std::string path() const { return folder_ + "/socket"; }

 private:
  std::string folder_;
  FileDescriptor listener_;
  std::thread thread_;
};

/// Sends all of `bytes`.
void write(int connection, const std::string& bytes);

/// Waits for exactly `size` bytes.
std::string readBytes(int connection, std::size_t size);

/// Waits for a RUN_COMMAND message of sway-ipc and returns its payload.
std::string readSwayCommand(int connection);

/// A message of sway-ipc with the payload `json`.
std::string swayReply(const std::string& json);

}  // namespace tarn
