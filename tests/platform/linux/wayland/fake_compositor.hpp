// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {

/// A compositor's socket. It answers one connection after another, each in its own way; more are refused.
class FakeCompositor {
 public:
  using Answer = std::function<void(int connection)>;

  explicit FakeCompositor(std::vector<Answer> answers);
  explicit FakeCompositor(Answer answer) : FakeCompositor(std::vector{std::move(answer)}) {}
  FakeCompositor(const FakeCompositor&) = delete;
  FakeCompositor& operator=(const FakeCompositor&) = delete;
  ~FakeCompositor();

  std::string path() const { return folder_ + "/socket"; }

 private:
  std::string folder_;
  FileDescriptor listener_;
  std::thread thread_;
};

/// Sends an answer.
void write(int connection, const std::string& bytes);

/// The next bytes of a question.
std::string readQuestion(int connection, std::size_t size);

/// The words of a command to sway.
std::string readSwayCommand(int connection);

/// An answer as sway frames it.
std::string swayAnswer(const std::string& json);

}  // namespace tarn
