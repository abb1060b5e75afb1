// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/x11/x11_session.hpp"

#include <poll.h>
#include <unistd.h>
#include <xcb/res.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "platform/linux/procfs/proc_pid_files.hpp"
#include "platform/linux/x11/xcb_reply.hpp"

namespace tarn {
namespace {

constexpr auto frontmostTimeout = std::chrono::milliseconds(50);
constexpr std::uint32_t maxPropertyLength = 64;  // 32-bit units

std::optional<std::uint32_t> parseNumber(const std::vector<std::uint8_t>& bytes) {
  std::uint32_t value = 0;
  if (bytes.size() < sizeof value) return std::nullopt;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

bool isThisMachine(const std::vector<std::uint8_t>& name) {
  std::array<char, 256> hostName{};
  if (gethostname(hostName.data(), hostName.size() - 1) != 0) return false;
  return std::string_view(hostName.data()) == std::string(name.begin(), name.end()).c_str();
}

}  // namespace

void X11Session::Disconnect::operator()(xcb_connection_t* connection) const {
  xcb_disconnect(connection);
}

X11Session::X11Session(std::optional<std::string> display, LinuxRoots roots)
    : display_(std::move(display)), roots_(std::move(roots)) {}

X11Session::~X11Session() = default;

std::optional<std::int32_t> X11Session::activeProcess(Clock::time_point deadline) {
  if (!prepare(deadline)) return std::nullopt;
  // Extended Window Manager Hints: _NET_ACTIVE_WINDOW, WINDOW/32, on the root window.
  const auto window = parseNumber(property(root_, atoms_->activeWindow, XCB_ATOM_WINDOW, 32, deadline));
  if (!window || *window == XCB_WINDOW_NONE) return std::nullopt;
  return windowOwner(*window, deadline);
}

std::optional<bool> X11Session::hasXembedTray(Clock::time_point deadline) {
  if (!prepare(deadline)) return std::nullopt;
  const auto cookie = xcb_get_selection_owner(connection_.get(), atoms_->traySelection);
  const XcbReply<xcb_get_selection_owner_reply_t> reply(
      static_cast<xcb_get_selection_owner_reply_t*>(awaitReply(cookie.sequence, deadline)));
  if (!reply) return std::nullopt;
  return reply->owner != XCB_WINDOW_NONE;
}

// Returns whether a query can be sent now. xcb notices a broken connection when it reads from it, so an idle
// connection is read first.
bool X11Session::prepare(Clock::time_point deadline) {
  if (connection_) discardEvents();
  if (!connection_ || xcb_connection_has_error(connection_.get()) != 0) return connect(deadline);
  return drainPendingReply() && (atoms_ || queryAtoms(deadline));
}

bool X11Session::connect(Clock::time_point deadline) {
  atoms_.reset();
  pendingReply_.reset();
  connection_.reset(xcb_connect(display_ ? display_->c_str() : nullptr, &screen_));
  if (xcb_connection_has_error(connection_.get()) != 0) return false;
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
  for (int index = 0; index < screen_ && screens.rem > 1; ++index) xcb_screen_next(&screens);
  if (screens.rem == 0) return false;
  root_ = screens.data->root;
  return queryAtoms(deadline);
}

bool X11Session::queryAtoms(Clock::time_point deadline) {
  xcb_connection_t* const connection = connection_.get();
  xcb_prefetch_extension_data(connection, &xcb_res_id);
  const std::string tray = "_NET_SYSTEM_TRAY_S" + std::to_string(screen_);
  const std::array cookies{requestAtom(connection, "_NET_ACTIVE_WINDOW"),
                           requestAtom(connection, "_NET_WM_PID"), requestAtom(connection, tray)};
  std::array<std::uint32_t, cookies.size()> atoms{};
  for (std::size_t index = 0; index < cookies.size(); ++index) {
    const XcbReply<xcb_intern_atom_reply_t> reply(
        static_cast<xcb_intern_atom_reply_t*>(awaitReply(cookies[index].sequence, deadline)));
    if (!reply) {
      while (++index < cookies.size()) xcb_discard_reply(connection, cookies[index].sequence);
      return false;
    }
    atoms[index] = reply->atom;
  }
  // Replies come in order, and this one was requested first: this does not block.
  const xcb_query_extension_reply_t* const extension = xcb_get_extension_data(connection, &xcb_res_id);
  hasResourceExtension_ = extension != nullptr && extension->present != 0;
  atoms_ = Atoms{atoms[0], atoms[1], atoms[2]};
  return true;
}

// Discards the late reply if it has arrived. Returns whether no reply is pending any more.
bool X11Session::drainPendingReply() {
  if (!pendingReply_) return true;
  void* reply = nullptr;
  xcb_generic_error_t* error = nullptr;
  if (xcb_poll_for_reply(connection_.get(), *pendingReply_, &reply, &error) == 0) return false;
  std::free(reply);
  std::free(error);
  pendingReply_.reset();
  return true;
}

// Reads what the server has sent, without waiting. This connection selects no events.
void X11Session::discardEvents() {
  while (xcb_generic_event_t* const event = xcb_poll_for_event(connection_.get())) std::free(event);
}

// Returns the reply, which the caller frees; null after an error or timeout.
void* X11Session::awaitReply(unsigned sequence, Clock::time_point deadline) {
  xcb_connection_t* const connection = connection_.get();
  xcb_flush(connection);
  while (true) {
    discardEvents();
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (xcb_poll_for_reply(connection, sequence, &reply, &error) != 0) {
      std::free(error);
      return reply;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd socket{xcb_get_file_descriptor(connection), POLLIN, 0};
    if (left <= 0 || poll(&socket, 1, static_cast<int>(left)) == 0) {
      pendingReply_ = sequence;
      return nullptr;
    }
  }
}

std::optional<std::int32_t> X11Session::windowOwner(std::uint32_t window, Clock::time_point deadline) {
  if (hasResourceExtension_) {
    const auto pid = clientProcess(window, deadline);
    if (pid || pendingReply_) return pid;
  }
  return declaredProcess(window, deadline);
}

// X-Resource extension 1.2, QueryClientIds with LocalClientPID: the process at the other end of the socket.
std::optional<std::int32_t> X11Session::clientProcess(std::uint32_t window, Clock::time_point deadline) {
  const xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  const auto cookie = xcb_res_query_client_ids(connection_.get(), 1, &spec);
  const XcbReply<xcb_res_query_client_ids_reply_t> reply(
      static_cast<xcb_res_query_client_ids_reply_t*>(awaitReply(cookie.sequence, deadline)));
  if (!reply) return std::nullopt;
  auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
  for (; ids.rem > 0; xcb_res_client_id_value_next(&ids)) {
    const xcb_res_client_id_value_t* const id = ids.data;
    const bool isPid = (id->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0;
    if (!isPid || xcb_res_client_id_value_value_length(id) < 1) continue;
    const std::uint32_t pid = *xcb_res_client_id_value_value(id);
    if (pid > 0 && std::in_range<std::int32_t>(pid)) return static_cast<std::int32_t>(pid);
  }
  return std::nullopt;
}

// Extended Window Manager Hints: _NET_WM_PID, CARDINAL/32, is valid only together with WM_CLIENT_MACHINE. A
// pid from another machine would name an unrelated process here.
std::optional<std::int32_t> X11Session::declaredProcess(std::uint32_t window, Clock::time_point deadline) {
  const auto machine = property(window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_GET_PROPERTY_TYPE_ANY, 8, deadline);
  if (!isThisMachine(machine) || pendingReply_) return std::nullopt;
  const auto pid = parseNumber(property(window, atoms_->windowPid, XCB_ATOM_CARDINAL, 32, deadline));
  if (!pid || *pid == 0 || !std::in_range<std::int32_t>(*pid)) return std::nullopt;
  return resolveNamespacedPid(roots_.proc, static_cast<std::int32_t>(*pid), getuid(), deadline);
}

// The bytes of a property; empty unless it has this type and format (8, 16 or 32 bits per element).
std::vector<std::uint8_t> X11Session::property(std::uint32_t window, std::uint32_t name, std::uint32_t type,
                                               std::uint8_t format, Clock::time_point deadline) {
  const auto cookie = xcb_get_property(connection_.get(), 0, window, name, type, 0, maxPropertyLength);
  const XcbReply<xcb_get_property_reply_t> reply(
      static_cast<xcb_get_property_reply_t*>(awaitReply(cookie.sequence, deadline)));
  if (!reply || reply->format != format || (type != XCB_GET_PROPERTY_TYPE_ANY && reply->type != type))
    return {};
  const auto* const bytes = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
  return {bytes, bytes + xcb_get_property_value_length(reply.get())};
}

FrontmostApplicationSource x11FrontmostApplication(std::shared_ptr<X11Session> session) {
  return [session = std::move(session)]() -> std::optional<FrontmostApplication> {
    const auto pid = session->activeProcess(X11Session::Clock::now() + frontmostTimeout);
    if (!pid) return std::nullopt;
    return FrontmostApplication{std::nullopt, *pid};
  };
}

}  // namespace tarn
