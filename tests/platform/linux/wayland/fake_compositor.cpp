// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/wayland/fake_compositor.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <filesystem>
#include <utility>

namespace tarn {

using namespace std::string_literals;

FakeCompositor::FakeCompositor(std::vector<Handler> handlers) {
  std::string folder = (std::filesystem::temp_directory_path() / "tarn-test-XXXXXX").string();
  folder_ = ::mkdtemp(folder.data());
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path().copy(static_cast<char*>(address.sun_path), path().size());
  listener_ = FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  EXPECT_EQ(::bind(listener_.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_EQ(::listen(listener_.number(), 4), 0);
  thread_ = std::thread([this, handlers = std::move(handlers)] {
    for (const Handler& handler : handlers) {
      const FileDescriptor connection(::accept(listener_.number(), nullptr, nullptr));
      if (connection.valid()) handler(connection.number());
    }
  });
}

FakeCompositor::~FakeCompositor() {
  ::shutdown(listener_.number(), SHUT_RDWR);
  thread_.join();
  std::filesystem::remove_all(folder_);
}

void write(int connection, const std::string& bytes) {
  EXPECT_EQ(::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
}

std::string readBytes(int connection, std::size_t size) {
  std::string bytes(size, '\0');
  EXPECT_EQ(::recv(connection, bytes.data(), size, MSG_WAITALL), static_cast<ssize_t>(size));
  return bytes;
}

std::string readSwayCommand(int connection) {
  const std::string head = readBytes(connection, 14);
  std::uint32_t length = 0;
  std::memcpy(&length, head.data() + 6, sizeof length);
  EXPECT_EQ(head.substr(10), "\0\0\0\0"s) << "type RUN_COMMAND";
  return readBytes(connection, length);
}

std::string swayReply(const std::string& json) {
  const auto length = static_cast<std::uint32_t>(json.size());
  std::string reply = "i3-ipc"s + std::string(8, '\0') + json;
  std::memcpy(reply.data() + 6, &length, sizeof length);
  return reply;
}

}  // namespace tarn
