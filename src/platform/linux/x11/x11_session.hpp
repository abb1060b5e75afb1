// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/procfs/linux_roots.hpp"

struct xcb_connection_t;

namespace tarn {

/// Questions to the X server over a connection of their own, so that they disturb nobody else's and none
/// waits longer than its deadline. The first question connects, which takes as long as it takes any program's
/// window library; a connection that broke is made anew at most once per question. A server that owes an
/// answer is asked nothing more until it has given it. Main thread.
class X11Session {
 public:
  using Clock = std::chrono::steady_clock;

  /// `display` as in the environment; nothing stands for the environment's own.
  explicit X11Session(std::optional<std::string> display = std::nullopt, LinuxRoots roots = {});
  ~X11Session();
  X11Session(const X11Session&) = delete;
  X11Session& operator=(const X11Session&) = delete;

  /// The process that owns the window that the window manager calls active: the one at the other end of the
  /// server's socket, else what the window says of itself when it says that it is from this machine. Nothing
  /// when there is no such window, or no answer in time.
  std::optional<std::int32_t> activeProcess(Clock::time_point deadline);

  /// Whether a tray of the older, embedding kind is there; nothing when there is no answer in time.
  std::optional<bool> hasEmbeddingTray(Clock::time_point deadline);

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const;
  };

  // Everything that is asked by name, known once per connection.
  struct Names {
    std::uint32_t activeWindow = 0;
    std::uint32_t processIdentifier = 0;
    std::uint32_t trayOwner = 0;
    bool hasResourceExtension = false;
  };

  bool connect(Clock::time_point deadline);
  bool isReady(Clock::time_point deadline);
  bool learnNames(Clock::time_point deadline);
  bool payDebt();
  void takeIn();
  void* awaitReply(unsigned sequence, Clock::time_point deadline);
  std::optional<std::int32_t> windowOwner(std::uint32_t window, Clock::time_point deadline);
  std::optional<std::int32_t> declaredProcess(std::uint32_t window, Clock::time_point deadline);
  std::vector<std::uint8_t> property(unsigned sequence, std::uint32_t type, std::uint8_t bits,
                                     Clock::time_point deadline);
  std::optional<std::int32_t> peerProcess(unsigned sequence, Clock::time_point deadline);

  std::optional<std::string> display_;
  LinuxRoots roots_;
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  int screen_ = 0;
  std::uint32_t root_ = 0;
  std::optional<Names> names_;
  std::optional<unsigned> debt_;  // the question that the server did not answer in time
};

}  // namespace tarn
