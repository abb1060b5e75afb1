// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "monitor/presentation.hpp"
#include "platform/linux/procfs/linux_roots.hpp"

struct xcb_connection_t;

namespace tarn {

/// Queries on a separate X11 connection, so that a timeout does not affect Qt's connection. No query
/// waits longer than its deadline, except for connecting: xcb_connect() blocks as it does in every program.
/// The first query connects; after a broken connection each query tries once to connect again. After a
/// timeout queries fail immediately until the late reply has arrived. Main thread.
class X11Session {
 public:
  using Clock = std::chrono::steady_clock;

  /// `display` is a display name such as ":0"; std::nullopt means the value of DISPLAY.
  explicit X11Session(std::optional<std::string> display = std::nullopt, LinuxRoots roots = {});
  ~X11Session();
  X11Session(const X11Session&) = delete;
  X11Session& operator=(const X11Session&) = delete;

  /// The pid of the process that owns the active window (_NET_ACTIVE_WINDOW): from the X-Resource extension,
  /// else from _NET_WM_PID if WM_CLIENT_MACHINE names this machine. nullopt when there is no active window,
  /// or no reply in time.
  std::optional<std::int32_t> activeProcess(Clock::time_point deadline);

  /// Whether an XEmbed tray exists: some client owns the selection _NET_SYSTEM_TRAY_Sn (System Tray
  /// Protocol). nullopt when there is no reply in time.
  std::optional<bool> hasXembedTray(Clock::time_point deadline);

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const;
  };

  struct Atoms {
    std::uint32_t activeWindow = 0;   // _NET_ACTIVE_WINDOW
    std::uint32_t windowPid = 0;      // _NET_WM_PID
    std::uint32_t traySelection = 0;  // _NET_SYSTEM_TRAY_Sn
  };

  bool prepare(Clock::time_point deadline);
  bool connect(Clock::time_point deadline);
  bool queryAtoms(Clock::time_point deadline);
  bool drainPendingReply();
  void discardEvents();
  void* awaitReply(unsigned sequence, Clock::time_point deadline);
  std::optional<std::int32_t> windowOwner(std::uint32_t window, Clock::time_point deadline);
  std::optional<std::int32_t> clientProcess(std::uint32_t window, Clock::time_point deadline);
  std::optional<std::int32_t> declaredProcess(std::uint32_t window, Clock::time_point deadline);
  std::vector<std::uint8_t> property(std::uint32_t window, std::uint32_t name, std::uint32_t type,
                                     std::uint8_t format, Clock::time_point deadline);

  std::optional<std::string> display_;
  LinuxRoots roots_;
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  int screen_ = 0;
  std::uint32_t root_ = 0;
  std::optional<Atoms> atoms_;  ///< requested once per connection
  bool hasResourceExtension_ = false;
  std::optional<unsigned> pendingReply_;  ///< sequence number of the request that timed out
};

/// Returns a source that queries `session` for the active window's process, for at most 50 ms. Shares the
/// session.
FrontmostApplicationSource x11FrontmostApplication(std::shared_ptr<X11Session> session);

}  // namespace tarn
