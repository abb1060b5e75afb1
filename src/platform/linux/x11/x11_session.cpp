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

#include "platform/linux/procfs/namespaced_pid.hpp"
#include "platform/linux/x11/xcb_reply.hpp"

namespace tarn {
namespace {

constexpr std::uint32_t longestProperty = 64;  // four-byte units

std::optional<std::uint32_t> number(const std::vector<std::uint8_t>& bytes) {
  std::uint32_t value = 0;
  if (bytes.size() < sizeof value) return std::nullopt;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

bool isThisMachine(const std::vector<std::uint8_t>& name) {
  std::array<char, 256> own{};
  if (gethostname(own.data(), own.size() - 1) != 0) return false;
  return std::string_view(own.data()) == std::string(name.begin(), name.end()).c_str();
}

}  // namespace

void X11Session::Disconnect::operator()(xcb_connection_t* connection) const {
  xcb_disconnect(connection);
}

X11Session::X11Session(std::optional<std::string> display, LinuxRoots roots)
    : display_(std::move(display)), roots_(std::move(roots)) {}

X11Session::~X11Session() = default;

std::optional<std::int32_t> X11Session::activeProcess(Clock::time_point deadline) {
  if (!isReady(deadline)) return std::nullopt;
  const auto cookie = xcb_get_property(connection_.get(), 0, root_, names_->activeWindow, XCB_ATOM_WINDOW, 0,
                                       longestProperty);
  const auto window = number(property(cookie.sequence, XCB_ATOM_WINDOW, 32, deadline));
  if (!window || *window == XCB_WINDOW_NONE) return std::nullopt;
  return windowOwner(*window, deadline);
}

std::optional<bool> X11Session::hasEmbeddingTray(Clock::time_point deadline) {
  if (!isReady(deadline)) return std::nullopt;
  const auto cookie = xcb_get_selection_owner(connection_.get(), names_->trayOwner);
  const XcbReply<xcb_get_selection_owner_reply_t> reply(
      static_cast<xcb_get_selection_owner_reply_t*>(awaitReply(cookie.sequence, deadline)));
  if (!reply) return std::nullopt;
  return reply->owner != XCB_WINDOW_NONE;
}

bool X11Session::connect(Clock::time_point deadline) {
  names_.reset();
  debt_.reset();
  connection_.reset(xcb_connect(display_ ? display_->c_str() : nullptr, &screen_));
  if (xcb_connection_has_error(connection_.get()) != 0) return false;
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
  for (int index = 0; index < screen_ && screens.rem > 1; ++index) xcb_screen_next(&screens);
  if (screens.rem == 0) return false;
  root_ = screens.data->root;
  return learnNames(deadline);
}

// Whether a question may be asked now. A broken connection is noticed when it is read from, so an idle one is
// given the chance to be.
bool X11Session::isReady(Clock::time_point deadline) {
  if (connection_) takeIn();
  if (!connection_ || xcb_connection_has_error(connection_.get()) != 0) return connect(deadline);
  return payDebt() && (names_ || learnNames(deadline));
}

bool X11Session::learnNames(Clock::time_point deadline) {
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
  // Answers come in order, so this one is here already and is not waited for.
  const xcb_query_extension_reply_t* const extension = xcb_get_extension_data(connection, &xcb_res_id);
  names_ = Names{atoms[0], atoms[1], atoms[2], extension != nullptr && extension->present != 0};
  return true;
}

// Takes the late answer, if it is here; whether none is owed any more.
bool X11Session::payDebt() {
  if (!debt_) return true;
  void* reply = nullptr;
  xcb_generic_error_t* error = nullptr;
  if (xcb_poll_for_reply(connection_.get(), *debt_, &reply, &error) == 0) return false;
  std::free(reply);
  std::free(error);
  debt_.reset();
  return true;
}

// Reads what the server has sent so far, without waiting. No events were asked for, so any is of no interest.
void X11Session::takeIn() {
  while (xcb_generic_event_t* const event = xcb_poll_for_event(connection_.get())) std::free(event);
}

void* X11Session::awaitReply(unsigned sequence, Clock::time_point deadline) {
  xcb_connection_t* const connection = connection_.get();
  xcb_flush(connection);
  while (true) {
    takeIn();
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (xcb_poll_for_reply(connection, sequence, &reply, &error) != 0) {
      std::free(error);
      return reply;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd socket{xcb_get_file_descriptor(connection), POLLIN, 0};
    if (left <= 0 || poll(&socket, 1, static_cast<int>(left)) == 0) {
      debt_ = sequence;
      return nullptr;
    }
  }
}

std::optional<std::int32_t> X11Session::windowOwner(std::uint32_t window, Clock::time_point deadline) {
  if (names_->hasResourceExtension) {
    const xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto cookie = xcb_res_query_client_ids(connection_.get(), 1, &spec);
    const auto peer = peerProcess(cookie.sequence, deadline);
    if (peer || debt_) return peer;
  }
  return declaredProcess(window, deadline);
}

// A number from another machine would be some unrelated process here.
std::optional<std::int32_t> X11Session::declaredProcess(std::uint32_t window, Clock::time_point deadline) {
  const auto machine = xcb_get_property(connection_.get(), 0, window, XCB_ATOM_WM_CLIENT_MACHINE,
                                        XCB_GET_PROPERTY_TYPE_ANY, 0, longestProperty);
  if (!isThisMachine(property(machine.sequence, XCB_GET_PROPERTY_TYPE_ANY, 8, deadline)) || debt_) {
    return std::nullopt;
  }
  const auto declared = xcb_get_property(connection_.get(), 0, window, names_->processIdentifier,
                                         XCB_ATOM_CARDINAL, 0, longestProperty);
  const auto pid = number(property(declared.sequence, XCB_ATOM_CARDINAL, 32, deadline));
  if (!pid || *pid == 0 || !std::in_range<std::int32_t>(*pid)) return std::nullopt;
  return resolveNamespacedPid(roots_.proc, static_cast<std::int32_t>(*pid), getuid(), deadline);
}

std::vector<std::uint8_t> X11Session::property(unsigned sequence, std::uint32_t type, std::uint8_t bits,
                                               Clock::time_point deadline) {
  const XcbReply<xcb_get_property_reply_t> reply(
      static_cast<xcb_get_property_reply_t*>(awaitReply(sequence, deadline)));
  if (!reply || reply->format != bits || (type != XCB_GET_PROPERTY_TYPE_ANY && reply->type != type))
    return {};
  const auto* const bytes = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
  return {bytes, bytes + xcb_get_property_value_length(reply.get())};
}

std::optional<std::int32_t> X11Session::peerProcess(unsigned sequence, Clock::time_point deadline) {
  const XcbReply<xcb_res_query_client_ids_reply_t> reply(
      static_cast<xcb_res_query_client_ids_reply_t*>(awaitReply(sequence, deadline)));
  if (!reply) return std::nullopt;
  auto identities = xcb_res_query_client_ids_ids_iterator(reply.get());
  for (; identities.rem > 0; xcb_res_client_id_value_next(&identities)) {
    const xcb_res_client_id_value_t* const identity = identities.data;
    const bool isProcess = (identity->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0;
    if (!isProcess || xcb_res_client_id_value_value_length(identity) < 1) continue;
    const std::uint32_t pid = *xcb_res_client_id_value_value(identity);
    if (pid > 0 && std::in_range<std::int32_t>(pid)) return static_cast<std::int32_t>(pid);
  }
  return std::nullopt;
}

}  // namespace tarn
